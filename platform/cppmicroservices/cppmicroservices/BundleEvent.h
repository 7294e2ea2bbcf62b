#pragma once

#include <cstdint>
#include <iosfwd>
#include <stdexcept>

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

/// A change of a bundle's state.
class BundleEvent {
 public:
  enum Type : std::uint32_t {
    BUNDLE_INSTALLED = 0x00000001,
    BUNDLE_STARTED = 0x00000002,
    BUNDLE_STOPPED = 0x00000004,
    BUNDLE_UPDATED = 0x00000008,  ///< Reserved, never sent.
    BUNDLE_UNINSTALLED = 0x00000010,
    BUNDLE_RESOLVED = 0x00000020,
    BUNDLE_UNRESOLVED = 0x00000040,
    BUNDLE_STARTING = 0x00000080,
    BUNDLE_STOPPING = 0x00000100,
    BUNDLE_LAZY_ACTIVATION = 0x00000200  ///< Reserved, never sent.
  };

  /// Makes an invalid event, whose type means nothing.
  BundleEvent() = default;

  /// Throw `std::invalid_argument` when a bundle is invalid.
  BundleEvent(Type type, const Bundle& bundle) : BundleEvent(type, bundle, bundle) {}
  BundleEvent(Type type, const Bundle& bundle, const Bundle& origin)
      : type(type), bundle(bundle), origin(origin) {
    if (!bundle || !origin) throw std::invalid_argument("the bundle of an event is invalid");
  }

  explicit operator bool() const { return static_cast<bool>(bundle); }
  Type GetType() const { return type; }
  Bundle GetBundle() const { return bundle; }

  /// Returns the bundle that installed `GetBundle()`; for other changes the bundle itself.
  Bundle GetOrigin() const { return origin; }

  bool operator==(const BundleEvent&) const = default;

 private:
  Type type = BUNDLE_UNINSTALLED;
  Bundle bundle;
  Bundle origin;
};

/// Writes the name of the type without its prefix.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os, BundleEvent::Type type);

/// Writes the type and the bundle; "NONE" for an invalid event.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os,
                                                          const BundleEvent& event);

}  // namespace cppmicroservices
