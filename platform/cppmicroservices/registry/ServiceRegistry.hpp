#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <shared_mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "registry/ServiceRecord.hpp"

namespace cppmicroservices::detail {

/// The services that are registered, found by interface and filter in the order of preference:
/// highest ranking first, then lowest id. Calls nobody.
class ServiceRegistry {
 public:
  /// Returns a service id that was not given before; ids ascend.
  long nextId() { return ++lastId; }

  /// Adds `record`. Throws `IllegalStateException` when its bundle stops.
  void add(const std::shared_ptr<ServiceRecord>& record);

  /// Removes `record`, if it is there.
  void remove(const ServiceRecord& record);

  /// Makes `change`, which may change the ranking of `record`, and puts the record in its place.
  void reorder(const std::shared_ptr<ServiceRecord>& record, const std::function<void()>& change);

  /// Returns references to the services under `interfaceId`, all when it is empty, that `filter`
  /// matches. Throws `std::invalid_argument` when `filter` cannot be parsed.
  std::vector<ServiceReferenceU> find(const std::string& interfaceId,
                                      const std::string& filter) const;

  /// Returns all services in the order of preference.
  std::vector<std::shared_ptr<ServiceRecord>> all() const;

 private:
  using Records = std::vector<std::shared_ptr<ServiceRecord>>;

  void insert(const std::shared_ptr<ServiceRecord>& record);
  bool erase(const ServiceRecord& record);
  const Records* recordsOf(const std::string& interfaceId) const;
  static std::size_t slotOf(const std::string& interfaceId);
  bool isCertainlyAbsent(const std::string& interfaceId) const;

  mutable std::shared_mutex mutex;
  std::atomic<long> lastId = 0;
  Records records;
  std::unordered_map<std::string, Records> recordsByInterface;

  // The number of registered interfaces in each slot. An empty slot answers the most frequent
  // lookup, of an interface that nobody registered, without a lock.
  static constexpr std::size_t kSlots = 1024;
  std::array<std::atomic<std::uint32_t>, kSlots> interfacesInSlot{};
};

}  // namespace cppmicroservices::detail
