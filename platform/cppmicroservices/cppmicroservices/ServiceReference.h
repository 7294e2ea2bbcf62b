#pragma once

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReferenceBase.h"

namespace cppmicroservices {

/// Names a registered service, seen under the interface `S`.
template <class S>
class ServiceReference : public ServiceReferenceBase {
 public:
  using ServiceType = S;

  /// Makes a reference that names no service.
  ServiceReference() = default;
  ServiceReference(const ServiceReference&) = default;
  ServiceReference& operator=(const ServiceReference&) = default;
  using ServiceReferenceBase::operator=;

  /// Names the service of `base`, none when it was not registered under `S`.
  ServiceReference(const ServiceReferenceBase& base) : ServiceReferenceBase(base) {
    bindTo(us_service_interface_iid<S>());
  }
  ServiceReference& operator=(const ServiceReferenceBase& base) {
    return *this = ServiceReference(base);
  }

  bool operator==(const ServiceReference& other) const {
    return ServiceReferenceBase::operator==(other);
  }
};

/// Names a registered service, seen under no interface in particular.
template <>
class ServiceReference<void> : public ServiceReferenceBase {
 public:
  using ServiceType = void;

  ServiceReference() = default;
  ServiceReference(const ServiceReference&) = default;
  ServiceReference& operator=(const ServiceReference&) = default;
  using ServiceReferenceBase::operator=;

  ServiceReference(const ServiceReferenceBase& base) : ServiceReferenceBase(base) {}

  bool operator==(const ServiceReference& other) const {
    return ServiceReferenceBase::operator==(other);
  }
};

using ServiceReferenceU = ServiceReference<void>;

}  // namespace cppmicroservices

template <class S>
struct std::hash<cppmicroservices::ServiceReference<S>>
    : std::hash<cppmicroservices::ServiceReferenceBase> {};
