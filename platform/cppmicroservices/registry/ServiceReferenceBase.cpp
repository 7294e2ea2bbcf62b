#include "cppmicroservices/ServiceReferenceBase.h"

#include <ostream>
#include <stdexcept>

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/ServiceRegistrationBase.h"
#include "cppmicroservices/detail/ServiceState.h"
#include "registry/ServiceRecord.hpp"

namespace cppmicroservices {

ServiceReferenceBase::operator bool() const {
  return record && record->isRegistered();
}

std::shared_ptr<const AnyMap> ServiceReferenceBase::properties() const {
  return record ? record->properties() : nullptr;
}

Any ServiceReferenceBase::GetProperty(const std::string& key) const {
  if (!record) return Any();
  const auto properties = record->properties();
  const auto entry = properties->find(key);
  return entry == properties->end() ? Any() : entry->second;
}

std::vector<std::string> ServiceReferenceBase::GetPropertyKeys() const {
  std::vector<std::string> keys;
  if (!record) return keys;
  const auto properties = record->properties();
  for (const auto& [key, value] : *properties) keys.push_back(key);
  return keys;
}

Bundle ServiceReferenceBase::GetBundle() const {
  return *this ? record->bundle->bundle() : Bundle();
}

std::vector<Bundle> ServiceReferenceBase::GetUsingBundles() const {
  std::vector<Bundle> bundles;
  if (!record) return bundles;
  for (const auto& user : record->users()) bundles.push_back(user->bundle());
  return bundles;
}

bool ServiceReferenceBase::IsConvertibleTo(const std::string& interfaceId) const {
  return record && record->findInterface(interfaceId) != nullptr;
}

void ServiceReferenceBase::bindTo(const std::string& name) {
  if (!record) return;
  interfaceId = record->findInterface(name);
  if (interfaceId == nullptr) record = nullptr;
}

bool ServiceReferenceBase::operator<(const ServiceReferenceBase& other) const {
  if (!record || !other.record) return !record && other.record;
  const int mine = record->ranking;
  const int others = other.record->ranking;
  return mine != others ? mine < others : record->id > other.record->id;
}

bool detail::isFindable(const ServiceReferenceBase& reference) {
  const auto& record = ServiceRecord::of(reference);
  return record && record->isFindable();
}

detail::Preference detail::preferenceOf(const ServiceReferenceBase& reference) {
  const ServiceRecord& record = *ServiceRecord::of(reference);
  return {record.ranking, -record.id};
}

detail::ServiceRecord& ServiceRegistrationBase::registered() const {
  if (!record || !record->isRegistered()) throw std::logic_error("the service is not registered");
  return *record;
}

ServiceReferenceBase ServiceRegistrationBase::GetReference(const std::string& interfaceId) const {
  ServiceReferenceBase reference = registered().reference();
  if (!interfaceId.empty()) reference.bindTo(interfaceId);
  return reference;
}

void ServiceRegistrationBase::SetProperties(const ServiceProperties& properties) {
  registered().setProperties(properties);
}

void ServiceRegistrationBase::Unregister() {
  if (!registered().unregister()) throw std::logic_error("the service is being unregistered");
}

bool ServiceRegistrationBase::operator<(const ServiceRegistrationBase& other) const {
  return ServiceReferenceBase(record, nullptr) < ServiceReferenceBase(other.record, nullptr);
}

std::ostream& operator<<(std::ostream& os, const ServiceReferenceBase& reference) {
  const Bundle bundle = reference.GetBundle();
  if (!bundle) return os << "Invalid service reference";
  os << "Reference for service object registered from " << bundle.GetSymbolicName() << " "
     << bundle.GetVersion();
  const char* separator = " (";
  for (const std::string& key : reference.GetPropertyKeys()) {
    os << separator << key << "=" << reference.GetProperty(key).ToStringNoExcept();
    separator = ",";
  }
  return os << ")";
}

std::ostream& operator<<(std::ostream& os, const ServiceRegistrationBase& registration) {
  return os << ServiceReferenceBase(registration.record, nullptr);
}

}  // namespace cppmicroservices
