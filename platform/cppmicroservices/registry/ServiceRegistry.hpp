#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "registry/FrameworkListeners.hpp"
#include "registry/ServiceRecord.hpp"

namespace cppmicroservices::detail {

/// The services that are registered, found by interface and filter in the order of preference:
/// highest ranking first, then lowest id. May be used from several threads; calls factories and
/// listeners with no lock held.
class ServiceRegistry {
 public:
  /// Keeps a reference to `listeners`, which it tells of every change.
  explicit ServiceRegistry(FrameworkListeners& listeners);

  /// Registers a service of `bundle` in its start `generation` and tells the listeners. Lookups
  /// find it before the first listener is told. Throws `IllegalStateException` when that start ends
  /// or has ended, and like the constructor of `ServiceRecord`; nothing is registered then.
  std::shared_ptr<ServiceRecord> registerService(const std::shared_ptr<ServiceClient>& bundle,
                                                 std::uint64_t generation,
                                                 const InterfaceMapConstPtr& service,
                                                 const ServiceProperties& properties);

  /// Removes `record`, if it is there. Tells nobody.
  void remove(const ServiceRecord& record) noexcept;

  /// Gives `record` new properties and moves it to its place in the order. Returns those that it
  /// replaced; null, and changes nothing, when `record` is not there. Tells nobody.
  std::shared_ptr<const AnyMap> update(const std::shared_ptr<ServiceRecord>& record,
                                       std::shared_ptr<const AnyMap> properties) noexcept;

  /// Returns references to the services under `interfaceId`, all when it is empty, that `filter`
  /// matches. Throws `std::invalid_argument` when there are such services and `filter`, which may
  /// be empty, cannot be parsed.
  std::vector<ServiceReferenceU> find(const std::string& interfaceId,
                                      const std::string& filter) const;

  /// Calls `action` for every service for which `condition` holds, until there is none left:
  /// `action` must end that. Calls it with no lock held, and allocates nothing.
  template <class Condition, class Action>
  void applyWhere(const Condition& condition, const Action& action) {
    // `action` and other threads change the list, so that one pass may miss a service.
    for (bool isDone = false; !std::exchange(isDone, true);) {
      std::size_t place = 0;
      while (const auto record = findFrom(place, condition)) {
        isDone = false;
        action(*record);
      }
    }
  }

  /// Returns all services in the order of preference.
  std::vector<std::shared_ptr<ServiceRecord>> all() const;

  FrameworkListeners& listeners;

 private:
  using Records = std::vector<std::shared_ptr<ServiceRecord>>;

  // Returns the first record from `place` on for which `condition` holds, and sets `place` to it.
  template <class Condition>
  std::shared_ptr<ServiceRecord> findFrom(std::size_t& place, const Condition& condition) const {
    const std::lock_guard lock(mutex);
    while (place < records.size() && !condition(*records[place])) ++place;
    return place < records.size() ? records[place] : nullptr;
  }

  void add(const std::shared_ptr<ServiceRecord>& record, std::uint64_t generation);
  bool eraseFromLists(const ServiceRecord& record) noexcept;
  Records recordsOf(const std::string& interfaceId) const;

  mutable std::mutex mutex;
  std::atomic<long> lastId = 0;
  Records records;
  // Has no empty lists.
  std::unordered_map<std::string, Records> recordsByInterface;
};

}  // namespace cppmicroservices::detail
