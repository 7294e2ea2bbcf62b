#pragma once

#include <cstdint>
#include <iosfwd>

#include "cppmicroservices/FrameworkExport.h"
#include "cppmicroservices/ServiceReference.h"

namespace cppmicroservices {

/// A change of a service.
class ServiceEvent {
 public:
  enum Type : std::uint32_t {
    SERVICE_REGISTERED = 0x00000001,
    SERVICE_MODIFIED = 0x00000002,
    SERVICE_UNREGISTERING =
        0x00000004,  ///< Lookups no longer find the service; it can be got still.
    SERVICE_MODIFIED_ENDMATCH = 0x00000008  ///< The listener's filter matched before the change.
  };

  /// Makes an invalid event.
  ServiceEvent() = default;
  ServiceEvent(Type type, const ServiceReferenceBase& reference)
      : type(type), reference(reference) {}

  explicit operator bool() const { return type != Type{}; }
  Type GetType() const { return type; }

  ServiceReferenceU GetServiceReference() const { return reference; }
  template <class S>
  ServiceReference<S> GetServiceReference() const {
    return GetServiceReference();
  }

 private:
  Type type{};
  ServiceReferenceU reference;
};

/// Writes the name of the type without its prefix.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os,
                                                          const ServiceEvent::Type& type);

/// Writes the type, the id and the interfaces of the service; "NONE" for an invalid event.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os,
                                                          const ServiceEvent& event);

}  // namespace cppmicroservices
