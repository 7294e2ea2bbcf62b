#include "registry/ServiceRegistry.hpp"

#include <algorithm>
#include <cstring>
#include <mutex>

#include "cppmicroservices/LDAPFilter.h"
#include "lifecycle/BundlePrivate.hpp"

namespace cppmicroservices::detail {

namespace {

bool isPreferred(const std::shared_ptr<ServiceRecord>& left,
                 const std::shared_ptr<ServiceRecord>& right) {
  if (left->ranking != right->ranking) return left->ranking > right->ranking;
  return left->id < right->id;
}

void insertSorted(std::vector<std::shared_ptr<ServiceRecord>>& records,
                  const std::shared_ptr<ServiceRecord>& record) {
  records.insert(std::lower_bound(records.begin(), records.end(), record, isPreferred), record);
}

std::size_t eraseFrom(std::vector<std::shared_ptr<ServiceRecord>>& records,
                      const ServiceRecord& record) {
  return std::erase_if(records, [&record](const auto& entry) { return entry.get() == &record; });
}

}  // namespace

void ServiceRegistry::add(const std::shared_ptr<ServiceRecord>& record) {
  const std::unique_lock lock(mutex);
  // Under the lock, so that a bundle that stops finds every service it has registered.
  record->bundle->requireOpen();
  insert(record);
}

void ServiceRegistry::remove(const ServiceRecord& record) {
  const std::unique_lock lock(mutex);
  erase(record);
}

void ServiceRegistry::reorder(const std::shared_ptr<ServiceRecord>& record,
                              const std::function<void()>& change) {
  const std::unique_lock lock(mutex);
  const bool wasThere = erase(*record);
  change();
  if (wasThere) insert(record);
}

void ServiceRegistry::insert(const std::shared_ptr<ServiceRecord>& record) {
  insertSorted(records, record);
  for (const std::string& interfaceId : record->interfaces) {
    insertSorted(recordsByInterface[interfaceId], record);
    ++interfacesInSlot[slotOf(interfaceId)];
  }
}

bool ServiceRegistry::erase(const ServiceRecord& record) {
  if (eraseFrom(records, record) == 0) return false;
  for (const std::string& interfaceId : record.interfaces) {
    --interfacesInSlot[slotOf(interfaceId)];
    const auto entry = recordsByInterface.find(interfaceId);
    eraseFrom(entry->second, record);
    if (entry->second.empty()) recordsByInterface.erase(entry);
  }
  return true;
}

std::vector<ServiceReferenceU> ServiceRegistry::find(const std::string& interfaceId,
                                                     const std::string& filter) const {
  std::vector<ServiceReferenceU> references;
  if (isCertainlyAbsent(interfaceId)) return references;
  const std::shared_lock lock(mutex);
  const Records* candidates = recordsOf(interfaceId);
  if (candidates == nullptr) return references;
  const LDAPFilter condition = filter.empty() ? LDAPFilter() : LDAPFilter(filter);
  for (const auto& record : *candidates) {
    if (condition && !condition.Match(*record->properties())) continue;
    references.push_back(record->reference(record->findInterface(interfaceId)));
  }
  return references;
}

ServiceRegistry::Records ServiceRegistry::all() const {
  const std::shared_lock lock(mutex);
  return records;
}

const ServiceRegistry::Records* ServiceRegistry::recordsOf(const std::string& interfaceId) const {
  if (interfaceId.empty()) return &records;
  const auto entry = recordsByInterface.find(interfaceId);
  return entry == recordsByInterface.end() ? nullptr : &entry->second;
}

// Samples the identifier, since hashing all of it would cost as much as the rest of a lookup.
// Identifiers of one family differ in length or near their ends.
std::size_t ServiceRegistry::slotOf(const std::string& interfaceId) {
  std::uint64_t head = 0;
  std::uint64_t tail = 0;
  if (interfaceId.size() >= sizeof head) {
    std::memcpy(&head, interfaceId.data() + (interfaceId.size() - sizeof head) / 2, sizeof head);
    std::memcpy(&tail, interfaceId.data() + interfaceId.size() - sizeof tail, sizeof tail);
  } else {
    std::memcpy(&head, interfaceId.data(), interfaceId.size());
  }
  const std::uint64_t mixed =
      (head + tail * 3 + interfaceId.size()) * std::uint64_t{0x9E3779B97F4A7C15};  // 2^64 / phi
  return static_cast<std::size_t>(mixed >> 54);
}

bool ServiceRegistry::isCertainlyAbsent(const std::string& interfaceId) const {
  return !interfaceId.empty() &&
         interfacesInSlot[slotOf(interfaceId)].load(std::memory_order_acquire) == 0;
}

}  // namespace cppmicroservices::detail
