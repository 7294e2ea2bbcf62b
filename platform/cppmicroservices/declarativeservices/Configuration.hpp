#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/ServiceFactory.h>
#include <cppmicroservices/ServiceReference.h>

#include "FactoryFunctions.hpp"
#include "Instance.hpp"
#include "components/ComponentDescription.hpp"

namespace cppmicroservices::declarativeservices {

/// A component while its references stay bound to the same services: the factory of its service,
/// with one implementation object that is made when it is first asked for.
///
/// May be used from several threads, which wait only for the one that makes the object.
class Configuration : public ServiceFactory, public std::enable_shared_from_this<Configuration> {
 public:
  /// `bound` has a service for each reference of `description`, in order. `file` is the library,
  /// for messages.
  Configuration(std::shared_ptr<const detail::ComponentDescription> description,
                const FactoryFunctions& functions, BundleContext ownContext, std::string file,
                std::vector<ServiceReferenceU> bound);

  /// Returns the one object for all bundles. Throws `ComponentException` when it cannot be made:
  /// the next call tries again.
  InterfaceMapConstPtr GetService(const Bundle& bundle,
                                  const ServiceRegistrationBase& registration) override;

  /// Does nothing: the object stays until `close`.
  void UngetService(const Bundle& bundle, const ServiceRegistrationBase& registration,
                    const InterfaceMapConstPtr& service) override;

  /// Releases the object for good. An object that another thread is making is released as soon as
  /// it is made.
  void close();

  /// Returns the service of each reference, in order.
  const std::vector<ServiceReferenceU>& boundServices() const { return services; }
  /// Returns the service that the reference `name` is bound to; see `ComponentContext`.
  std::shared_ptr<void> locate(const std::string& name, const std::string& interfaceId) const;

 private:
  bool beginMaking();
  std::unique_ptr<Instance> make();
  InterfaceMapConstPtr endMaking(std::unique_ptr<Instance> made);
  void checkInterfaces(const InterfaceMapConstPtr& services) const;
  [[noreturn]] void fail(const std::string& reason) const;

  const std::shared_ptr<const detail::ComponentDescription> component;
  const FactoryFunctions factory;
  BundleContext context;
  const std::string location;
  const std::vector<ServiceReferenceU> services;

  std::mutex mutex;
  std::condition_variable madeOrNot;
  std::thread::id maker;
  bool closed = false;
  std::unique_ptr<Instance> instance;
};

}  // namespace cppmicroservices::declarativeservices
