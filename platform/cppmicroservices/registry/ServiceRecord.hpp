#pragma once

#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "cppmicroservices/ServiceEvent.h"
#include "cppmicroservices/ServiceFactory.h"
#include "cppmicroservices/ServiceProperties.h"

namespace cppmicroservices::detail {

class BundlePrivate;

/// Throws the exception that tells that keys differ from `key` in case only.
[[noreturn]] void throwCaseVariants(const std::string& key);

/// One registered service: its interfaces, properties and objects, and the bundles that hold it.
///
/// Factories and listeners are called with no lock held. The record lives on while a reference,
/// a registration or a holder of the service is left, after it was unregistered too.
class ServiceRecord : public std::enable_shared_from_this<ServiceRecord> {
 public:
  /// Shares `service`, which must not be empty. Throws `std::runtime_error` when two keys of
  /// `properties` differ in case only.
  ServiceRecord(std::shared_ptr<BundlePrivate> registeredBy, InterfaceMapConstPtr service,
                const ServiceProperties& properties, long number);

  /// Returns the record behind `reference`, null when it names no service.
  static const std::shared_ptr<ServiceRecord>& of(const ServiceReferenceBase& reference) {
    return reference.record;
  }

  ServiceReferenceU reference(const std::string* seenAs = nullptr);
  ServiceRegistrationBase registration();

  /// Returns the interface equal to `name`, null when there is none. Borrowed from the record.
  const std::string* findInterface(const std::string& name) const;

  /// Returns the properties as they are now.
  std::shared_ptr<const AnyMap> properties() const;

  /// Replaces the properties that are not the framework's and tells the listeners. Throws like
  /// the constructor.
  void setProperties(const ServiceProperties& given);

  /// Returns the objects of the service for `user`, which holds it until the last copy of the
  /// pointer goes; null when it was unregistered or its factory failed.
  InterfaceMapConstPtr acquire(const std::shared_ptr<BundlePrivate>& user);

  /// Takes the service away from `user`, if it holds it.
  void releaseFrom(const BundlePrivate& user);

  /// Ends the registration, and says whether somebody else had not ended it before.
  bool unregister();

  bool isRegistered() const { return state != State::kUnregistered; }

  /// Returns the bundles that hold the service.
  std::vector<std::shared_ptr<BundlePrivate>> users() const;

  const std::shared_ptr<BundlePrivate> bundle;
  const long id;
  const std::vector<std::string> interfaces;

  // Changed under the lock of the registry only, whose order it settles.
  std::atomic<int> ranking = 0;

 private:
  enum class State { kRegistered, kUnregistering, kUnregistered };
  class Hold;

  // What one bundle got. Counts while it stands in `uses`; a holder that is left after that
  // keeps the objects alive and no more.
  struct Use {
    std::shared_ptr<BundlePrivate> user;
    InterfaceMapConstPtr service;
    std::shared_ptr<ServiceFactory> factory;
    int count = 0;
    std::thread::id maker;  // the thread in which the factory makes the objects
  };
  using UsePointer = std::shared_ptr<Use>;
  using Uses = std::map<const BundlePrivate*, UsePointer>;

  AnyMap withFrameworkProperties(const ServiceProperties& given) const;
  void publish(AnyMap newProperties);

  bool isMadeElsewhere(const BundlePrivate& user) const;
  bool isCurrent(const UsePointer& use) const;
  InterfaceMapConstPtr make(const UsePointer& use);
  InterfaceMapConstPtr callFactory(const Use& use);
  bool isWhole(const InterfaceMapConstPtr& service) const;
  InterfaceMapConstPtr hold(const UsePointer& use);
  void release(const UsePointer& use);
  void giveBack(const Use& use);
  void dropObjects();
  void report(const ServiceException& exception);
  void reportThrown(const std::string& problem);

  mutable std::mutex mutex;
  std::condition_variable made;
  std::atomic<State> state = State::kRegistered;
  InterfaceMapConstPtr objects;
  std::shared_ptr<ServiceFactory> factory;
  std::shared_ptr<const AnyMap> currentProperties;
  Uses uses;
};

}  // namespace cppmicroservices::detail
