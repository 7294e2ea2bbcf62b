#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/ServiceReference.h>
#include <cppmicroservices/ServiceRegistration.h>
#include <cppmicroservices/detail/ServiceCount.h>

#include "Configuration.hpp"
#include "FactoryFunctions.hpp"
#include "components/ComponentDescription.hpp"

namespace cppmicroservices::declarativeservices {

/// One component of an active bundle: its service is registered while each of its references has
/// a service to be bound to.
///
/// What it does depends on the services that are registered, not on the events about them: these
/// may come late, or in another order. May be used from several threads. Where two threads change
/// the same component, one of them does the work of both and the other one returns.
class Component {
 public:
  /// Throws `ComponentException` when the library of `owner` has no factory for it.
  Component(const Bundle& owner, detail::ComponentDescription description);

  const detail::ComponentDescription& description() const { return *component; }

  /// Registers the service as soon as it can be. Throws like `update`.
  void start();
  /// Registers or unregisters the service, after services have come or gone. Throws what the
  /// registration throws: the next call tries again.
  void update();
  /// Unregisters the service for good.
  void stop();

  bool isOffered() const;

  /// Returns the bundle. Throws `IllegalStateException` when it has stopped.
  Bundle bundle() const { return context.GetBundle(); }
  /// Returns the library and the name, for messages.
  std::string label() const;

 private:
  using Services = std::vector<ServiceReferenceU>;

  void settle(std::unique_lock<std::mutex> lock);
  void step(std::unique_lock<std::mutex>& lock);
  bool isStillBound() const;
  void offer(std::unique_lock<std::mutex>& lock);
  std::optional<Services> findServices();
  bool makeCurrent(const std::shared_ptr<Configuration>& made);
  void registerService(const std::shared_ptr<Configuration>& made);
  void withdraw(std::unique_lock<std::mutex>& lock);

  // Not a `Bundle`, which would keep the framework running.
  BundleContext context;
  const std::string location;
  const std::shared_ptr<const detail::ComponentDescription> component;
  const FactoryFunctions factory;
  // One for each reference.
  std::vector<const detail::ServiceCount*> serviceCounts;

  mutable std::mutex mutex;
  bool started = false;
  bool stopped = false;
  bool changing = false;
  // Something has changed since the thread that set `changing` looked.
  bool outdated = false;
  // These are changed by the thread that set `changing` only.
  std::shared_ptr<Configuration> current;
  ServiceRegistrationU registration;
};

}  // namespace cppmicroservices::declarativeservices
