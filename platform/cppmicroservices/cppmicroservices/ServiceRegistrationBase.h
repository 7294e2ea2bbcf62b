#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <utility>

#include "cppmicroservices/ServiceProperties.h"
#include "cppmicroservices/ServiceReferenceBase.h"

namespace cppmicroservices {

/// Lets the registering bundle change and unregister a service. Use `ServiceRegistration`. Copies
/// refer to the same registration, which does not end with the last of them.
class QUENLITH_CPPMICROSERVICES_EXPORT ServiceRegistrationBase {
 public:
  /// Makes the object invalid.
  ServiceRegistrationBase& operator=(std::nullptr_t) { return *this = ServiceRegistrationBase(); }

  /// Says whether the object is valid; it stays so after the service was unregistered.
  explicit operator bool() const { return record != nullptr; }

  /// Returns a reference to the service under `interfaceId`, under all interfaces when that is
  /// empty. Throws `std::logic_error` when the service is not registered.
  ServiceReferenceBase GetReference(const std::string& interfaceId = std::string()) const;

  /// Replaces the properties, except those that the framework sets, and tells the listeners.
  /// Throws `std::logic_error` when the service is not registered or is being unregistered,
  /// `std::runtime_error` when two keys differ in case only.
  void SetProperties(const ServiceProperties& properties);

  /// Removes the service from the registry, tells the listeners, and takes the service away from
  /// the bundles that use it. Throws `std::logic_error` when it is not registered.
  void Unregister();

  /// Orders as the references do; invalid objects come first.
  bool operator<(const ServiceRegistrationBase& other) const;
  bool operator==(const ServiceRegistrationBase& other) const { return record == other.record; }

 private:
  template <class I1, class... Interfaces>
  friend class ServiceRegistration;
  friend class detail::ServiceRecord;
  friend struct std::hash<ServiceRegistrationBase>;
  friend QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(
      std::ostream& os, const ServiceRegistrationBase& registration);

  ServiceRegistrationBase() = default;
  explicit ServiceRegistrationBase(std::shared_ptr<detail::ServiceRecord> record)
      : record(std::move(record)) {}
  detail::ServiceRecord& registered() const;

  std::shared_ptr<detail::ServiceRecord> record;
};

/// Writes what a reference to the service writes.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(
    std::ostream& os, const ServiceRegistrationBase& registration);

}  // namespace cppmicroservices

template <>
struct std::hash<cppmicroservices::ServiceRegistrationBase> {
  std::size_t operator()(const cppmicroservices::ServiceRegistrationBase& registration) const {
    return std::hash<std::shared_ptr<cppmicroservices::detail::ServiceRecord>>()(
        registration.record);
  }
};
