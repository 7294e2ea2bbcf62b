#include "registry/ServiceRegistry.hpp"

#include <utility>

#include "cppmicroservices/LDAPFilter.h"

namespace cppmicroservices::detail {

namespace {

template <class Records>
bool eraseFrom(Records& records, const ServiceRecord& record) noexcept {
  const auto place = records.find(record);
  if (place == records.end() || place->get() != &record) return false;
  records.erase(place);
  return true;
}

// Also erases the list when it becomes empty.
template <class Lists, class Key>
void eraseFrom(Lists& lists, const Key& key, const ServiceRecord& record) noexcept {
  const auto entry = lists.find(key);
  if (entry == lists.end()) return;
  eraseFrom(entry->second, record);
  if (entry->second.empty()) lists.erase(entry);
}

}  // namespace

bool ServiceRegistry::Precedes::operator()(const ServiceRecord& left,
                                           const ServiceRecord& right) const {
  const int lefts = left.ranking;
  const int rights = right.ranking;
  return lefts != rights ? lefts > rights : left.id < right.id;
}

ServiceRegistry::ServiceRegistry(FrameworkListeners& listeners) : listeners(listeners) {}

std::shared_ptr<ServiceRecord> ServiceRegistry::registerService(
    const std::shared_ptr<ServiceClient>& bundle, std::uint64_t generation,
    const InterfaceMapConstPtr& service, const ServiceProperties& properties) {
  auto record = std::make_shared<ServiceRecord>(*this, bundle, service, properties, ++lastId);
  add(record, generation);
  record->warnOfUnusableRanking();
  listeners.send(ServiceEvent(ServiceEvent::SERVICE_REGISTERED, record->reference()));
  return record;
}

void ServiceRegistry::add(const std::shared_ptr<ServiceRecord>& record, std::uint64_t generation) {
  const std::lock_guard lock(mutex);
  // Under the lock, so that a bundle that stops finds every service it has registered.
  record->bundle->requireOpen(generation);
  try {
    records.insert(record);
    recordsByBundle[record->bundle.get()].insert(record);
    for (const std::string& interfaceId : record->interfaces) {
      recordsByInterface[interfaceId].insert(record);
    }
  } catch (...) {
    eraseFromLists(*record);
    throw;
  }
  // Last, and before any listener is told: who reads a count of 0 may rely on it.
  for (ServiceCount* const count : record->counts) ++*count;
}

void ServiceRegistry::remove(const ServiceRecord& record) noexcept {
  const std::lock_guard lock(mutex);
  if (!eraseFromLists(record)) return;
  for (ServiceCount* const count : record.counts) --*count;
}

// Also for a record that is in some of its lists only. Says whether it was in the list of all.
bool ServiceRegistry::eraseFromLists(const ServiceRecord& record) noexcept {
  const bool wasThere = eraseFrom(records, record);
  eraseFrom(recordsByBundle, record.bundle.get(), record);
  for (const std::string& interfaceId : record.interfaces) {
    eraseFrom(recordsByInterface, interfaceId, record);
  }
  return wasThere;
}

std::shared_ptr<const AnyMap> ServiceRegistry::update(ServiceRecord& record,
                                                      std::shared_ptr<const AnyMap> properties) {
  std::vector<std::pair<Records*, Records::node_type>> moved;
  // All that is allocated, before anything is changed.
  moved.reserve(record.interfaces.size() + 2);
  const auto take = [&](Records& list) {
    moved.emplace_back(&list, list.extract(list.find(record)));
  };
  const std::lock_guard lock(mutex);
  if (!records.contains(record)) return nullptr;
  // The old ranking finds the record, the new one its place.
  take(records);
  take(recordsByBundle.at(record.bundle.get()));
  for (const std::string& name : record.interfaces) take(recordsByInterface.at(name));
  auto replaced = record.publish(std::move(properties));
  for (auto& [list, node] : moved) list->insert(std::move(node));
  return replaced;
}

std::vector<ServiceReferenceU> ServiceRegistry::find(const std::string& interfaceId,
                                                     const std::string& filter) const {
  if (interfaceId.starts_with("::")) return find(interfaceId.substr(2), filter);
  std::vector<ServiceReferenceU> references;
  const auto candidates = recordsOf(interfaceId);
  if (candidates.empty()) return references;
  const LDAPFilter condition = filter.empty() ? LDAPFilter() : LDAPFilter(filter);
  for (const auto& record : candidates) {
    if (condition && !condition.Match(*record->properties())) continue;
    references.push_back(record->reference(record->findInterface(interfaceId)));
  }
  return references;
}

std::vector<std::shared_ptr<ServiceRecord>> ServiceRegistry::of(const ServiceClient& bundle) const {
  const std::lock_guard lock(mutex);
  const auto entry = recordsByBundle.find(&bundle);
  if (entry == recordsByBundle.end()) return {};
  return {entry->second.begin(), entry->second.end()};
}

std::shared_ptr<ServiceRecord> ServiceRegistry::firstOf(const ServiceClient& bundle) const {
  const std::lock_guard lock(mutex);
  const auto entry = recordsByBundle.find(&bundle);
  return entry == recordsByBundle.end() ? nullptr : *entry->second.begin();
}

std::vector<std::shared_ptr<ServiceRecord>> ServiceRegistry::recordsOf(
    const std::string& interfaceId) const {
  const std::lock_guard lock(mutex);
  if (interfaceId.empty()) return {records.begin(), records.end()};
  const auto entry = recordsByInterface.find(interfaceId);
  if (entry == recordsByInterface.end()) return {};
  return {entry->second.begin(), entry->second.end()};
}

}  // namespace cppmicroservices::detail
