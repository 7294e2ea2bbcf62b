#include "Runtime.hpp"

#include <algorithm>
#include <utility>

#include <cppmicroservices/Constants.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/servicecomponent/ComponentException.hpp>

#include "components/ComponentDescription.hpp"
#include "describeCircle.hpp"
#include "lifecycle/sendFrameworkEvent.hpp"

namespace cppmicroservices::declarativeservices {

void Runtime::start() {
  const auto self = shared_from_this();
  serviceListener = context.AddServiceListener(
      [self](const ServiceEvent& event) { self->serviceChanged(event); });
  bundleListener =
      context.AddBundleListener([self](const BundleEvent& event) { self->bundleChanged(event); });
  for (const Bundle& bundle : context.GetBundles()) add(bundle);
}

void Runtime::stop() {
  context.RemoveListener(std::move(bundleListener));
  std::map<long, Components> left;
  {
    const std::lock_guard lock(mutex);
    stopped = true;
    left = bundles;
  }
  for (const auto& [id, components] : left) remove(id);
  context.RemoveListener(std::move(serviceListener));
}

void Runtime::bundleChanged(const BundleEvent& event) {
  if (event.GetType() == BundleEvent::BUNDLE_STARTED) add(event.GetBundle());
  if (event.GetType() == BundleEvent::BUNDLE_STOPPING) remove(event.GetBundle().GetBundleId());
}

void Runtime::serviceChanged(const ServiceEvent& event) {
  const ServiceReferenceU service = event.GetServiceReference();
  for (const std::shared_ptr<Component>& component : watchersOf(service)) {
    if (event.GetType() == ServiceEvent::SERVICE_REGISTERED) component->serviceCame(service);
    if (event.GetType() == ServiceEvent::SERVICE_UNREGISTERING) component->serviceWent(service);
  }
}

Runtime::Components Runtime::watchersOf(const ServiceReferenceU& service) {
  Components found;
  const Any interfaceIds = service.GetProperty(Constants::OBJECTCLASS);
  const std::lock_guard lock(mutex);
  for (const std::string& interfaceId : ref_any_cast<std::vector<std::string>>(interfaceIds)) {
    const auto range = watchers.equal_range(interfaceId);
    std::transform(range.first, range.second, std::back_inserter(found),
                   [](const auto& entry) { return entry.second; });
  }
  return found;
}

void Runtime::add(const Bundle& bundle) {
  if (bundle.GetState() != Bundle::STATE_ACTIVE) return;
  const Components components = makeComponents(bundle);
  if (!keep(bundle, components)) return;
  for (const std::shared_ptr<Component>& component : components) component->start();
  reportCircle(bundle, components);
  // A bundle that began to stop before it was kept has no further event for it.
  if (bundle.GetState() != Bundle::STATE_ACTIVE) remove(bundle.GetBundleId());
}

Runtime::Components Runtime::makeComponents(const Bundle& bundle) {
  Components components;
  for (auto& description : detail::readComponents(bundle.GetHeaders(), bundle.GetLocation())) {
    try {
      components.push_back(std::make_shared<Component>(bundle, std::move(description)));
    } catch (const service::component::ComponentException& problem) {
      report(bundle, problem.what());
    }
  }
  return components;
}

// Says whether this call has added the bundle.
bool Runtime::keep(const Bundle& bundle, const Components& components) {
  const std::lock_guard lock(mutex);
  if (stopped || !bundles.emplace(bundle.GetBundleId(), components).second) return false;
  for (const std::shared_ptr<Component>& component : components) {
    for (const auto& reference : component->description().references) {
      watchers.emplace(reference.interfaceId, component);
    }
  }
  return true;
}

void Runtime::remove(long bundleId) {
  for (const std::shared_ptr<Component>& component : takeAll(bundleId)) component->stop();
}

Runtime::Components Runtime::takeAll(long bundleId) {
  const std::lock_guard lock(mutex);
  const auto entry = bundles.find(bundleId);
  if (entry == bundles.end()) return {};
  Components components = std::move(entry->second);
  bundles.erase(entry);
  std::erase_if(watchers, [&](const auto& watcher) {
    return std::find(components.begin(), components.end(), watcher.second) != components.end();
  });
  return components;
}

void Runtime::reportCircle(const Bundle& bundle, const Components& components) {
  std::vector<const detail::ComponentDescription*> waiting;
  for (const std::shared_ptr<Component>& component : components) {
    if (!component->isOffered()) waiting.push_back(&component->description());
  }
  const std::string circle = describeCircle(waiting);
  if (!circle.empty()) report(bundle, bundle.GetLocation() + ": " + circle);
}

void Runtime::report(const Bundle& bundle, const std::string& message) {
  detail::sendFrameworkEvent(
      context,
      FrameworkEvent(FrameworkEvent::FRAMEWORK_ERROR, bundle, message,
                     std::make_exception_ptr(service::component::ComponentException(message))));
}

}  // namespace cppmicroservices::declarativeservices
