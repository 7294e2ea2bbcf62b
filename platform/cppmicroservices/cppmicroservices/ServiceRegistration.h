#pragma once

#include <type_traits>

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceRegistrationBase.h"

namespace cppmicroservices {

class BundleContext;

/// Lets the registering bundle change and unregister a service under `I1`, `Interfaces...`.
template <class I1, class... Interfaces>
class ServiceRegistration : public ServiceRegistrationBase {
 public:
  /// Makes an invalid object.
  ServiceRegistration() = default;
  using ServiceRegistrationBase::operator=;

  /// Returns a reference to the service under `Interface`.
  template <class Interface>
  ServiceReference<Interface> GetReference() const {
    static_assert((std::is_same_v<Interface, I1> || ... || std::is_same_v<Interface, Interfaces>),
                  "the service is not registered under this interface");
    return ServiceRegistrationBase::GetReference(us_service_interface_iid<Interface>());
  }

  /// Returns a reference to the service under its first interface.
  ServiceReference<I1> GetReference() const {
    return ServiceRegistrationBase::GetReference(us_service_interface_iid<I1>());
  }

 private:
  friend class BundleContext;
  ServiceRegistration(const ServiceRegistrationBase& base) : ServiceRegistrationBase(base) {}
};

/// Lets the registering bundle change and unregister a service, whatever its interfaces.
template <>
class ServiceRegistration<void> : public ServiceRegistrationBase {
 public:
  /// Makes an invalid object.
  ServiceRegistration() = default;
  ServiceRegistration(const ServiceRegistrationBase& base) : ServiceRegistrationBase(base) {}
  using ServiceRegistrationBase::operator=;
};

using ServiceRegistrationU = ServiceRegistration<void>;

}  // namespace cppmicroservices
