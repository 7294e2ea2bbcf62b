#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/ServiceReference.h>
#include <cppmicroservices/ServiceRegistration.h>

#include "Configuration.hpp"
#include "FactoryFunctions.hpp"
#include "components/ComponentDescription.hpp"

namespace cppmicroservices::declarativeservices {

/// One component of an active bundle: its service is registered while each of its references has
/// a service to be bound to.
///
/// May be used from several threads. Where two threads change the same component, one of them
/// does the work of both and the other one returns.
class Component {
 public:
  /// Throws `ComponentException` when the library of `owner` has no factory for it.
  Component(const Bundle& owner, detail::ComponentDescription description);

  const detail::ComponentDescription& description() const { return *component; }

  /// Starts with the services that are registered by then.
  void start();
  void serviceCame(const ServiceReferenceU& service);
  void serviceWent(const ServiceReferenceU& service);
  /// Unregisters the service for good.
  void stop();

  bool isOffered() const;

 private:
  struct Reference {
    std::string interfaceId;
    std::vector<ServiceReferenceU> candidates;
  };

  void settle();
  bool step(std::unique_lock<std::mutex>& lock);
  bool hasAllServices() const;
  bool isStillBound() const;
  std::vector<ServiceReferenceU> bestServices() const;
  void offer(const std::shared_ptr<Configuration>& made);
  void withdraw(Configuration& old);

  const Bundle bundle;
  BundleContext context;
  const std::shared_ptr<const detail::ComponentDescription> component;
  const FactoryFunctions factory;

  mutable std::mutex mutex;
  std::vector<Reference> references;
  // Services that were unregistered before `start` had looked them up.
  std::vector<ServiceReferenceU> wentEarly;
  bool started = false;
  bool stopped = false;
  bool changing = false;
  std::shared_ptr<Configuration> current;
  // Used by the thread that set `changing` only.
  ServiceRegistrationU registration;
};

}  // namespace cppmicroservices::declarativeservices
