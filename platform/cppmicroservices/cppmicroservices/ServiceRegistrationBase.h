#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "cppmicroservices/ServiceProperties.h"
#include "cppmicroservices/ServiceReferenceBase.h"

namespace cppmicroservices {

/// Lets the maker of a service change and unregister it. `ServiceRegistration` is the form to
/// use. Copies stand for the same registration; the last one that goes does not unregister.
class QUENLITH_CPPMICROSERVICES_EXPORT ServiceRegistrationBase {
 public:
  /// Makes the object stand for no registration.
  ServiceRegistrationBase& operator=(std::nullptr_t) { return *this = ServiceRegistrationBase(); }

  /// Says whether the object stands for a registration.
  explicit operator bool() const { return record != nullptr; }

  /// Returns a reference to the service under `interfaceId`, under none in particular when that
  /// is empty. Throws `std::logic_error` when the service is not registered (any more).
  ServiceReferenceBase GetReference(const std::string& interfaceId = std::string()) const;

  /// Replaces the properties, except those that the framework sets, and tells the listeners.
  /// Throws `std::logic_error` when the service is not registered (any more),
  /// `std::runtime_error` when two keys differ in case only.
  void SetProperties(const ServiceProperties& properties);

  /// Removes the service from the registry, tells the listeners, and takes the service away from
  /// the bundles that hold it. Throws `std::logic_error` when it is not registered (any more).
  void Unregister();

  /// Orders as the references do; an object that stands for no registration comes first.
  bool operator<(const ServiceRegistrationBase& other) const;
  bool operator==(const ServiceRegistrationBase& other) const { return record == other.record; }

 private:
  template <class I1, class... Interfaces>
  friend class ServiceRegistration;
  friend class detail::ServiceRecord;
  friend struct std::hash<ServiceRegistrationBase>;

  ServiceRegistrationBase() = default;
  explicit ServiceRegistrationBase(std::shared_ptr<detail::ServiceRecord> service)
      : record(std::move(service)) {}
  detail::ServiceRecord& registered() const;

  std::shared_ptr<detail::ServiceRecord> record;
};

}  // namespace cppmicroservices

template <>
struct std::hash<cppmicroservices::ServiceRegistrationBase> {
  std::size_t operator()(const cppmicroservices::ServiceRegistrationBase& registration) const {
    return std::hash<std::shared_ptr<cppmicroservices::detail::ServiceRecord>>()(
        registration.record);
  }
};
