#include "cppmicroservices/ServiceReferenceBase.h"

#include <stdexcept>

#include "cppmicroservices/ServiceRegistrationBase.h"
#include "framework/FrameworkCore.hpp"

namespace cppmicroservices {

ServiceReferenceBase::ServiceReferenceBase() = default;
ServiceReferenceBase::ServiceReferenceBase(const ServiceReferenceBase&) = default;
ServiceReferenceBase& ServiceReferenceBase::operator=(const ServiceReferenceBase&) = default;
ServiceReferenceBase::~ServiceReferenceBase() = default;

ServiceReferenceBase::ServiceReferenceBase(std::shared_ptr<detail::ServiceRecord> service,
                                           const std::string* asInterface)
    : record(std::move(service)), seenAs(asInterface) {}

ServiceReferenceBase& ServiceReferenceBase::operator=(std::nullptr_t) {
  return *this = ServiceReferenceBase();
}

ServiceReferenceBase::operator bool() const {
  return record && record->isRegistered();
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

std::string ServiceReferenceBase::GetInterfaceId() const {
  return seenAs ? *seenAs : "";
}

bool ServiceReferenceBase::IsConvertibleTo(const std::string& interfaceId) const {
  return record && record->findInterface(interfaceId) != nullptr;
}

void ServiceReferenceBase::bindTo(const std::string& interfaceId) {
  if (!record) return;
  seenAs = record->findInterface(interfaceId);
  if (seenAs == nullptr) record = nullptr;
}

bool ServiceReferenceBase::operator<(const ServiceReferenceBase& other) const {
  if (!record || !other.record) return !record && other.record;
  const int mine = record->ranking;
  const int others = other.record->ranking;
  return mine != others ? mine < others : record->id > other.record->id;
}

bool ServiceReferenceBase::operator==(const ServiceReferenceBase& other) const {
  return record == other.record;
}

std::size_t ServiceReferenceBase::Hash() const {
  return std::hash<std::shared_ptr<detail::ServiceRecord>>()(record);
}

ServiceRegistrationBase::ServiceRegistrationBase() = default;
ServiceRegistrationBase::ServiceRegistrationBase(const ServiceRegistrationBase&) = default;
ServiceRegistrationBase::ServiceRegistrationBase(ServiceRegistrationBase&&) noexcept = default;
ServiceRegistrationBase& ServiceRegistrationBase::operator=(const ServiceRegistrationBase&) =
    default;
ServiceRegistrationBase& ServiceRegistrationBase::operator=(ServiceRegistrationBase&&) noexcept =
    default;
ServiceRegistrationBase::~ServiceRegistrationBase() = default;

ServiceRegistrationBase::ServiceRegistrationBase(std::shared_ptr<detail::ServiceRecord> service)
    : record(std::move(service)) {}

ServiceRegistrationBase& ServiceRegistrationBase::operator=(std::nullptr_t) {
  record = nullptr;
  return *this;
}

ServiceRegistrationBase::operator bool() const {
  return record != nullptr;
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

bool ServiceRegistrationBase::operator==(const ServiceRegistrationBase& other) const {
  return record == other.record;
}

}  // namespace cppmicroservices
