#pragma once

#include <cstddef>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
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

  /// Handles the bundles that are active, and from then on every one that starts. Throws when
  /// memory runs out: call `stop` then.
  void start();
  /// Stops all components, also those of a `start` that has thrown. The object cannot be started
  /// again.
  void stop();

 private:
  using Components = std::vector<std::shared_ptr<Component>>;
  // The components with a reference to one interface, by the id of the bundle and the place in it.
  using Watchers = std::map<std::pair<long, std::size_t>, std::shared_ptr<Component>>;

  void bundleChanged(const BundleEvent& event);
  void serviceChanged(const ServiceEvent& event);
  void add(const Bundle& bundle);
  void remove(long bundleId);
  Components makeComponents(const Bundle& bundle);
  bool keep(long bundleId, const Components& components);
  std::optional<long> firstBundle();
  Components takeAll(long bundleId);
  void forget(long bundleId, std::size_t place, const detail::ComponentDescription& component);
  Components watchersOf(const ServiceReferenceU& service);
  void change(Component& component, void (Component::*operation)()) noexcept;
  void reportFailure(const Component& component, const std::exception& problem) noexcept;
  void reportCircle(const Bundle& bundle, const Components& components);
  void report(const Bundle& bundle, const std::string& message);

  BundleContext context;
  ListenerToken bundleListener;
  ListenerToken serviceListener;

  std::mutex mutex;
  bool stopped = false;
  std::map<long, Components> bundles;
  std::map<std::string, Watchers> watchers;
};

}  // namespace cppmicroservices::declarativeservices
