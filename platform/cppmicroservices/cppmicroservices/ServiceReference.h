#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReferenceBase.h"

namespace cppmicroservices {

/// Names a registered service, seen under the interface `S`; under none in particular when that
/// is void.
template <class S>
class ServiceReference : public ServiceReferenceBase {
 public:
  using ServiceType = S;

  /// Makes a reference that names no service.
  ServiceReference() = default;

  /// Makes the reference name no service.
  ServiceReference& operator=(std::nullptr_t) { return *this = ServiceReference(); }

  /// Names the service of `base`, none when it was not registered under `S`.
  ServiceReference(const ServiceReferenceBase& base) : ServiceReferenceBase(base) {
    if constexpr (!std::is_void_v<S>) bindTo(us_service_interface_iid<S>());
  }
};

using ServiceReferenceU = ServiceReference<void>;

}  // namespace cppmicroservices

template <class S>
struct std::hash<cppmicroservices::ServiceReference<S>>
    : std::hash<cppmicroservices::ServiceReferenceBase> {};
