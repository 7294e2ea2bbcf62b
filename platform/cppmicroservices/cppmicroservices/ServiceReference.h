#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReferenceBase.h"

namespace cppmicroservices {

/// Refers to a service under the interface `S`, or under all its interfaces when `S` is void.
template <class S>
class ServiceReference : public ServiceReferenceBase {
 public:
  using ServiceType = S;

  /// Makes an invalid reference.
  ServiceReference() = default;

  /// Makes the reference invalid.
  ServiceReference& operator=(std::nullptr_t) { return *this = ServiceReference(); }

  /// Refers to the service of `base`; invalid when that was not registered under `S`.
  ServiceReference(const ServiceReferenceBase& base) : ServiceReferenceBase(base) {
    if constexpr (!std::is_void_v<S>) bindTo(us_service_interface_iid<S>());
  }
};

using ServiceReferenceU = ServiceReference<void>;

}  // namespace cppmicroservices

template <class S>
struct std::hash<cppmicroservices::ServiceReference<S>>
    : std::hash<cppmicroservices::ServiceReferenceBase> {};
