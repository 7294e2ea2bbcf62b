#include "cppmicroservices/FrameworkEvent.h"

#include <ostream>

#include "properties/text.hpp"

namespace cppmicroservices {

std::ostream& operator<<(std::ostream& os, FrameworkEvent::Type type) {
  switch (type) {
    case FrameworkEvent::FRAMEWORK_STARTED:
      return os << "STARTED";
    case FrameworkEvent::FRAMEWORK_ERROR:
      return os << "ERROR";
    case FrameworkEvent::FRAMEWORK_WARNING:
      return os << "WARNING";
    case FrameworkEvent::FRAMEWORK_INFO:
      return os << "INFO";
    case FrameworkEvent::FRAMEWORK_STOPPED:
      return os << "STOPPED";
    case FrameworkEvent::FRAMEWORK_STOPPED_UPDATE:
      return os << "STOPPED_UPDATE";
    case FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT:
      return os << "WAIT_TIMEDOUT";
    default:
      return os << "Unknown framework event type (" << static_cast<unsigned>(type) << ")";
  }
}

std::ostream& operator<<(std::ostream& os, const FrameworkEvent& event) {
  if (!event) return os << "NONE";
  os << event.GetType() << "\n " << event.GetMessage() << "\n " << event.GetBundle();
  os << "\n Exception: ";
  const std::exception_ptr cause = event.GetThrowable();
  return os << (cause ? detail::textOf(cause) : "NONE");
}

}  // namespace cppmicroservices
