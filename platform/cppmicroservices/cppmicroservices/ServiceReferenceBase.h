#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cppmicroservices/Any.h"
#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

class AnyMap;
class Bundle;
class LDAPFilter;
class ServiceRegistrationBase;
namespace detail {
class ServiceRecord;
}

/// Refers to a service, under one or all of its interfaces. Use `ServiceReference`.
class QUENLITH_CPPMICROSERVICES_EXPORT ServiceReferenceBase {
 public:
  /// Says whether the reference refers to a service that is registered.
  explicit operator bool() const;

  /// Returns the property `key`, compared without regard to case; empty when there is none. Also
  /// for a service that was unregistered.
  Any GetProperty(const std::string& key) const;

  /// Returns the keys of all properties, also for a service that was unregistered.
  std::vector<std::string> GetPropertyKeys() const;

  /// Returns the bundle that registered the service, an invalid one after it was unregistered.
  Bundle GetBundle() const;

  /// Returns the bundles that use the service.
  std::vector<Bundle> GetUsingBundles() const;

  /// Returns the interface of the reference; empty when it is for all of them.
  std::string GetInterfaceId() const { return record && interfaceId ? *interfaceId : ""; }

  /// Says whether the service was registered under `interfaceId`.
  bool IsConvertibleTo(const std::string& interfaceId) const;

  /// Orders by ranking, then by descending service id: the preferred service is the greatest.
  bool operator<(const ServiceReferenceBase& other) const;

  /// Says whether both refer to the same service, whatever the interface.
  bool operator==(const ServiceReferenceBase& other) const { return record == other.record; }

 private:
  template <class S>
  friend class ServiceReference;
  friend class ServiceRegistrationBase;
  friend QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(
      std::ostream& os, const ServiceRegistrationBase& registration);
  friend class LDAPFilter;
  friend class detail::ServiceRecord;
  friend struct std::hash<ServiceReferenceBase>;

  ServiceReferenceBase() = default;
  ServiceReferenceBase(std::shared_ptr<detail::ServiceRecord> record,
                       const std::string* interfaceId)
      : record(std::move(record)), interfaceId(interfaceId) {}

  // Restricts the reference to the interface `name`; makes it invalid when the service lacks it.
  void bindTo(const std::string& name);

  // Returns the current properties, null when the reference refers to no service.
  std::shared_ptr<const AnyMap> properties() const;

  std::shared_ptr<detail::ServiceRecord> record;
  // Points into the record's list of interfaces; null for all of them.
  const std::string* interfaceId = nullptr;
};

/// Writes the bundle that registered the service, and the properties.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& operator<<(std::ostream& os,
                                                          const ServiceReferenceBase& reference);

}  // namespace cppmicroservices

template <>
struct std::hash<cppmicroservices::ServiceReferenceBase> {
  std::size_t operator()(const cppmicroservices::ServiceReferenceBase& reference) const {
    return std::hash<std::shared_ptr<cppmicroservices::detail::ServiceRecord>>()(reference.record);
  }
};
