#pragma once

#include <cstddef>
#include <functional>
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
namespace detail {
class ServiceRecord;
}

/// Names a registered service, seen under one of its interfaces or under none in particular.
/// `ServiceReference` is the form to use.
class QUENLITH_CPPMICROSERVICES_EXPORT ServiceReferenceBase {
 public:
  /// Says whether the reference names a service that is registered.
  explicit operator bool() const;

  /// Returns the property `key`, compared without regard to case; empty when there is none.
  /// Answers for a service that was unregistered, too.
  Any GetProperty(const std::string& key) const;

  /// Returns the keys of all properties. Answers for a service that was unregistered, too.
  std::vector<std::string> GetPropertyKeys() const;

  /// Returns the bundle that registered the service, an invalid one after it was unregistered.
  Bundle GetBundle() const;

  /// Returns the bundles that hold the service.
  std::vector<Bundle> GetUsingBundles() const;

  /// Returns the interface that the service is seen under; empty when that is left open.
  std::string GetInterfaceId() const { return seenAs ? *seenAs : ""; }

  /// Says whether the service was registered under `interfaceId`.
  bool IsConvertibleTo(const std::string& interfaceId) const;

  /// Orders by ranking, then by descending service id: the service preferred to all others is
  /// the greatest.
  bool operator<(const ServiceReferenceBase& other) const;

  /// Says whether both name the same registered service, whatever the interface.
  bool operator==(const ServiceReferenceBase& other) const { return record == other.record; }

 private:
  template <class S>
  friend class ServiceReference;
  friend class ServiceRegistrationBase;
  friend class LDAPFilter;
  friend class detail::ServiceRecord;
  friend struct std::hash<ServiceReferenceBase>;

  ServiceReferenceBase() = default;
  ServiceReferenceBase(std::shared_ptr<detail::ServiceRecord> service,
                       const std::string* asInterface)
      : record(std::move(service)), seenAs(asInterface) {}

  // Sees the service under `interfaceId`; names no service where it has no such interface.
  void bindTo(const std::string& interfaceId);

  // Returns the current properties, null when the reference refers to no service.
  std::shared_ptr<const AnyMap> properties() const;

  std::shared_ptr<detail::ServiceRecord> record;
  // Points into the record's list of interfaces; null for none in particular.
  const std::string* seenAs = nullptr;
};

}  // namespace cppmicroservices

template <>
struct std::hash<cppmicroservices::ServiceReferenceBase> {
  std::size_t operator()(const cppmicroservices::ServiceReferenceBase& reference) const {
    return std::hash<std::shared_ptr<cppmicroservices::detail::ServiceRecord>>()(reference.record);
  }
};
