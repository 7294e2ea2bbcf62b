#pragma once

#include <cstdint>

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

}  // namespace cppmicroservices
