#include "registry/ServiceRegistry.hpp"

#include <algorithm>
#include <utility>

#include "cppmicroservices/LDAPFilter.h"

namespace cppmicroservices::detail {

namespace {

using Records = std::vector<std::shared_ptr<ServiceRecord>>;

bool precedes(const std::shared_ptr<ServiceRecord>& left, const ServiceRecord& right) {
  if (left->ranking != right.ranking) return left->ranking > right.ranking;
  return left->id < right.id;
}

// Does not allocate when `records` has had one more entry before.
void insertInto(Records& records, const std::shared_ptr<ServiceRecord>& record) {
  records.insert(std::lower_bound(records.begin(), records.end(), *record, precedes), record);
}

// Says whether `record` was there.
bool eraseFrom(Records& records, const ServiceRecord& record) noexcept {
  const auto place = std::lower_bound(records.begin(), records.end(), record, precedes);
  if (place == records.end() || place->get() != &record) return false;
  records.erase(place);
  return true;
}

}  // namespace

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
    insertInto(records, record);
    for (const std::string& interfaceId : record->interfaces) {
      insertInto(recordsByInterface[interfaceId], record);
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
  for (const std::string& interfaceId : record.interfaces) {
    const auto entry = recordsByInterface.find(interfaceId);
    if (entry == recordsByInterface.end()) continue;
    eraseFrom(entry->second, record);
    if (entry->second.empty()) recordsByInterface.erase(entry);
  }
  return wasThere;
}

std::shared_ptr<const AnyMap> ServiceRegistry::update(
    const std::shared_ptr<ServiceRecord>& record,
    std::shared_ptr<const AnyMap> properties) noexcept {
  const std::lock_guard lock(mutex);
  // The old ranking finds the record, the new one its place. A list that has just lost an entry
  // has the capacity for it, so that nothing here can fail.
  if (!eraseFrom(records, *record)) return nullptr;
  for (const auto& name : record->interfaces) eraseFrom(recordsByInterface.at(name), *record);
  auto replaced = record->publish(std::move(properties));
  insertInto(records, record);
  for (const auto& name : record->interfaces) insertInto(recordsByInterface.at(name), record);
  return replaced;
}

std::vector<ServiceReferenceU> ServiceRegistry::find(const std::string& interfaceId,
                                                     const std::string& filter) const {
  if (interfaceId.starts_with("::")) return find(interfaceId.substr(2), filter);
  std::vector<ServiceReferenceU> references;
  const Records candidates = recordsOf(interfaceId);
  if (candidates.empty()) return references;
  const LDAPFilter condition = filter.empty() ? LDAPFilter() : LDAPFilter(filter);
  for (const auto& record : candidates) {
    if (condition && !condition.Match(*record->properties())) continue;
    references.push_back(record->reference(record->findInterface(interfaceId)));
  }
  return references;
}

std::vector<std::shared_ptr<ServiceRecord>> ServiceRegistry::all() const {
  return recordsOf("");
}

ServiceRegistry::Records ServiceRegistry::recordsOf(const std::string& interfaceId) const {
  const std::lock_guard lock(mutex);
  if (interfaceId.empty()) return records;
  const auto entry = recordsByInterface.find(interfaceId);
  return entry == recordsByInterface.end() ? Records() : entry->second;
}

}  // namespace cppmicroservices::detail
