#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/BundleEvent.h>
#include <cppmicroservices/ListenerToken.h>
#include <cppmicroservices/ServiceEvent.h>

#include "Component.hpp"

namespace cppmicroservices::declarativeservices {

/// Makes the components of all bundles that are active.
///
/// A problem with a component becomes an event for the framework listeners and does not affect the
/// other components.
class Runtime : public std::enable_shared_from_this<Runtime> {
 public:
  explicit Runtime(const BundleContext& ownContext) : context(ownContext) {}

  /// Handles the bundles that are active, and from then on every one that starts.
  void start();
  /// Stops all components. The object cannot be started again.
  void stop();

 private:
  using Components = std::vector<std::shared_ptr<Component>>;

  void bundleChanged(const BundleEvent& event);
  void serviceChanged(const ServiceEvent& event);
  void add(const Bundle& bundle);
  void remove(long bundleId);
  Components makeComponents(const Bundle& bundle);
  bool keep(const Bundle& bundle, const Components& components);
  Components takeAll(long bundleId);
  Components watchersOf(const ServiceReferenceU& service);
  void reportCircle(const Bundle& bundle, const Components& components);
  void report(const Bundle& bundle, const std::string& message);

  BundleContext context;
  ListenerToken bundleListener;
  ListenerToken serviceListener;

  std::mutex mutex;
  bool stopped = false;
  std::map<long, Components> bundles;
  // The components that have a reference to an interface.
  std::multimap<std::string, std::shared_ptr<Component>> watchers;
};

}  // namespace cppmicroservices::declarativeservices
