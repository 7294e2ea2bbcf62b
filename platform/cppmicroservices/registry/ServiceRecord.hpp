#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "cppmicroservices/AnyMap.h"
#include "cppmicroservices/ServiceEvent.h"
#include "cppmicroservices/ServiceException.h"
#include "cppmicroservices/ServiceFactory.h"
#include "cppmicroservices/ServiceProperties.h"
#include "registry/ServiceClient.hpp"
#include "registry/serviceCounts.hpp"

namespace cppmicroservices::detail {

class ServiceRegistry;

/// One service: its interfaces, properties and objects, and the bundles that use it.
///
/// Calls factories and listeners with no lock held. A record lives as long as a reference, a
/// registration or a user of the service does, also after the service was unregistered.
class ServiceRecord : public std::enable_shared_from_this<ServiceRecord> {
 public:
  /// Makes a record that is in no registry yet. Shares `objects`, which must not be empty, and
  /// keeps a reference to `registry`, which must live as long as `bundle`. Throws
  /// `std::runtime_error` when two keys of `properties` differ in case only.
  ServiceRecord(ServiceRegistry& registry, std::shared_ptr<ServiceClient> bundle,
                InterfaceMapConstPtr objects, const ServiceProperties& properties, long id);

  /// Returns the record of `reference`, null when it refers to no service.
  static const std::shared_ptr<ServiceRecord>& of(const ServiceReferenceBase& reference) {
    return reference.record;
  }

  ServiceReferenceU reference(const std::string* interfaceId = nullptr);
  ServiceRegistrationBase registration();

  /// Returns the interface equal to `name`, null when there is none. Borrowed from the record.
  const std::string* findInterface(const std::string& name) const;

  /// Returns the current properties.
  std::shared_ptr<const AnyMap> properties() const;

  /// Replaces the properties that are not the framework's and tells the listeners. Throws like
  /// the constructor, and `std::logic_error` when the service is being unregistered; the properties
  /// are unchanged then.
  void setProperties(const ServiceProperties& given);

  /// Tells the framework listeners when the ranking is not a number that can be used.
  void warnOfUnusableRanking() noexcept;

  /// Returns the objects of the service for `user` in its start `generation`, which uses it until
  /// the last copy of the pointer is destroyed; null when it was unregistered or its factory
  /// failed. Throws `IllegalStateException` when that start ends or has ended.
  InterfaceMapConstPtr acquire(const std::shared_ptr<ServiceClient>& user,
                               std::uint64_t generation);

  /// Takes the service away from `user`, if it uses it.
  void releaseFrom(const ServiceClient& user) noexcept;

  /// Unregisters the service. Returns false when it was unregistered, or is being so, already.
  bool unregister() noexcept;

  bool isRegistered() const { return state != State::kUnregistered; }

  /// Says whether the service is one of `other`, or was.
  bool isIn(const ServiceRegistry& other) const { return &registry == &other; }

  /// Says whether the service is registered and not being unregistered.
  bool isFindable() const noexcept { return state == State::kRegistered; }

  /// Returns the bundles that use the service.
  std::vector<std::shared_ptr<ServiceClient>> users() const;

  const std::shared_ptr<ServiceClient> bundle;
  const long id;
  const std::vector<std::string> interfaces;
  // One for each interface.
  const std::vector<ServiceCount*> counts;

  // Changed under the lock of the registry only, whose order depends on it.
  std::atomic<int> ranking = 0;

 private:
  friend class ServiceRegistry;

  enum class State { kRegistered, kUnregistering, kUnregistered };
  struct Hold;

  // What one bundle got. A hold that remains after the use left `uses` only keeps the objects
  // alive.
  struct Use {
    std::shared_ptr<ServiceClient> user;
    InterfaceMapConstPtr service;
    std::shared_ptr<ServiceFactory> factory;
    int holdCount = 0;
    std::thread::id caller;  // the thread in which the factory makes or takes back the objects
    ServiceUses::Entry entry;
  };
  using UsePointer = std::shared_ptr<Use>;
  using Uses = std::map<const ServiceClient*, UsePointer>;

  std::shared_ptr<const AnyMap> withFrameworkProperties(const ServiceProperties& given) const;
  // Returns the properties that it replaces.
  std::shared_ptr<const AnyMap> publish(std::shared_ptr<const AnyMap> newProperties) noexcept;

  bool isInFactoryElsewhere(const ServiceClient& user) const;
  bool isCurrent(const Use& use) const;
  void endUse(const ServiceClient& user) noexcept;
  InterfaceMapConstPtr startUse(const std::shared_ptr<ServiceClient>& user,
                                std::unique_lock<std::mutex>& lock);
  InterfaceMapConstPtr make(std::shared_ptr<Hold> holder);
  InterfaceMapConstPtr callFactory(const Use& use) noexcept;
  bool isComplete(const InterfaceMapConstPtr& service) const;
  InterfaceMapConstPtr hold(const UsePointer& use);
  void release(const UsePointer& use) noexcept;
  void returnToFactory(const Use& use) noexcept;
  void dropObjects() noexcept;
  void report(const char* problem, ServiceException::Type type) noexcept;
  void reportThrown(const char* problem) noexcept;

  ServiceRegistry& registry;
  mutable std::mutex mutex;
  std::condition_variable leftFactory;
  std::atomic<State> state = State::kRegistered;
  InterfaceMapConstPtr objects;
  std::shared_ptr<ServiceFactory> factory;
  std::shared_ptr<const AnyMap> currentProperties;
  Uses uses;
};

}  // namespace cppmicroservices::detail
