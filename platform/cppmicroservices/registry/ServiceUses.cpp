#include "registry/ServiceUses.hpp"

#include "registry/ServiceRecord.hpp"

namespace cppmicroservices::detail {

void ServiceUses::add(Entry& entry) noexcept {
  const std::lock_guard lock(mutex);
  records.splice(records.end(), entry.node);
}

void ServiceUses::remove(Entry& entry) noexcept {
  const std::lock_guard lock(mutex);
  entry.node.splice(entry.node.end(), records, entry.place);
}

std::shared_ptr<ServiceRecord> ServiceUses::first() const noexcept {
  const std::lock_guard lock(mutex);
  return records.empty() ? nullptr : records.front()->shared_from_this();
}

std::vector<std::shared_ptr<ServiceRecord>> ServiceUses::all() const {
  const std::lock_guard lock(mutex);
  std::vector<std::shared_ptr<ServiceRecord>> result;
  for (ServiceRecord* const record : records) result.push_back(record->shared_from_this());
  return result;
}

}  // namespace cppmicroservices::detail
