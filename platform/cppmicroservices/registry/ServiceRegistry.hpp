#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
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
  /// replaced; null when `record` is not there. Changes nothing then, and when it throws. Tells
  /// nobody.
  std::shared_ptr<const AnyMap> update(ServiceRecord& record,
                                       std::shared_ptr<const AnyMap> properties);

  /// Returns references to the services under `interfaceId`, all when it is empty, that `filter`
  /// matches. Throws `std::invalid_argument` when there are such services and `filter`, which may
  /// be empty, cannot be parsed.
  std::vector<ServiceReferenceU> find(const std::string& interfaceId,
                                      const std::string& filter) const;

  /// Returns the services that `bundle` has registered, in the order of preference.
  std::vector<std::shared_ptr<ServiceRecord>> of(const ServiceClient& bundle) const;

  /// Returns the preferred one of the services that `bundle` has registered, null when there is
  /// none. Allocates nothing.
  std::shared_ptr<ServiceRecord> firstOf(const ServiceClient& bundle) const;

  FrameworkListeners& listeners;

 private:
  // The order of preference.
  struct Precedes {
    using is_transparent = void;
    using Pointer = std::shared_ptr<ServiceRecord>;
    bool operator()(const Pointer& left, const Pointer& right) const {
      return (*this)(*left, *right);
    }
    bool operator()(const Pointer& left, const ServiceRecord& right) const {
      return (*this)(*left, right);
    }
    bool operator()(const ServiceRecord& left, const Pointer& right) const {
      return (*this)(left, *right);
    }
    bool operator()(const ServiceRecord& left, const ServiceRecord& right) const;
  };
  using Records = std::set<std::shared_ptr<ServiceRecord>, Precedes>;

  void add(const std::shared_ptr<ServiceRecord>& record, std::uint64_t generation);
  bool eraseFromLists(const ServiceRecord& record) noexcept;
  std::vector<std::shared_ptr<ServiceRecord>> recordsOf(const std::string& interfaceId) const;

  mutable std::mutex mutex;
  std::atomic<long> lastId = 0;
  Records records;
  // Have no empty lists.
  std::unordered_map<std::string, Records> recordsByInterface;
  std::unordered_map<const ServiceClient*, Records> recordsByBundle;
};

}  // namespace cppmicroservices::detail
