#include "cppmicroservices/BundleEvent.h"

#include <ostream>

namespace cppmicroservices {

std::ostream& operator<<(std::ostream& os, BundleEvent::Type type) {
  switch (type) {
    case BundleEvent::BUNDLE_INSTALLED:
      return os << "INSTALLED";
    case BundleEvent::BUNDLE_STARTED:
      return os << "STARTED";
    case BundleEvent::BUNDLE_STOPPED:
      return os << "STOPPED";
    case BundleEvent::BUNDLE_UNINSTALLED:
      return os << "UNINSTALLED";
    case BundleEvent::BUNDLE_RESOLVED:
      return os << "RESOLVED";
    case BundleEvent::BUNDLE_UNRESOLVED:
      return os << "UNRESOLVED";
    case BundleEvent::BUNDLE_STARTING:
      return os << "STARTING";
    case BundleEvent::BUNDLE_STOPPING:
      return os << "STOPPING";
    case BundleEvent::BUNDLE_LAZY_ACTIVATION:
      return os << "LAZY_ACTIVATION";
    default:
      return os << "Unknown bundle event type (" << static_cast<unsigned>(type) << ")";
  }
}

std::ostream& operator<<(std::ostream& os, const BundleEvent& event) {
  if (!event) return os << "NONE";
  const Bundle bundle = event.GetBundle();
  return os << event.GetType() << " #" << bundle.GetBundleId() << " (" << bundle.GetSymbolicName()
            << " at " << bundle.GetLocation() << ")";
}

}  // namespace cppmicroservices
