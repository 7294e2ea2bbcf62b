#include "cppmicroservices/ServiceEvent.h"

#include <ostream>

#include "cppmicroservices/Constants.h"

namespace cppmicroservices {

std::ostream& operator<<(std::ostream& os, const ServiceEvent::Type& type) {
  switch (type) {
    case ServiceEvent::SERVICE_REGISTERED:
      return os << "REGISTERED";
    case ServiceEvent::SERVICE_MODIFIED:
      return os << "MODIFIED";
    case ServiceEvent::SERVICE_UNREGISTERING:
      return os << "UNREGISTERING";
    case ServiceEvent::SERVICE_MODIFIED_ENDMATCH:
      return os << "MODIFIED_ENDMATCH";
    default:
      return os << "unknown service event type (" << static_cast<unsigned>(type) << ")";
  }
}

std::ostream& operator<<(std::ostream& os, const ServiceEvent& event) {
  if (!event) return os << "NONE";
  const ServiceReferenceU service = event.GetServiceReference();
  return os << event.GetType() << " "
            << service.GetProperty(Constants::SERVICE_ID).ToStringNoExcept()
            << " objectClass=" << service.GetProperty(Constants::OBJECTCLASS).ToStringNoExcept();
}

}  // namespace cppmicroservices
