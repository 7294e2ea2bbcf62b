#include "Runtime.hpp"

#include <algorithm>
#include <iterator>
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
  {
    const std::lock_guard lock(mutex);
    stopped = true;
  }
  // Not by a copy of the table, for which there may be no memory.
  while (const auto id = firstBundle()) remove(*id);
  context.RemoveListener(std::move(serviceListener));
}

void Runtime::bundleChanged(const BundleEvent& event) {
  if (event.GetType() == BundleEvent::BUNDLE_STARTED) add(event.GetBundle());
  if (event.GetType() == BundleEvent::BUNDLE_STOPPING) remove(event.GetBundle().GetBundleId());
}

void Runtime::serviceChanged(const ServiceEvent& event) {
  const bool hasComeOrGone = event.GetType() == ServiceEvent::SERVICE_REGISTERED ||
                             event.GetType() == ServiceEvent::SERVICE_UNREGISTERING;
  if (!hasComeOrGone) return;
  for (const std::shared_ptr<Component>& component : watchersOf(event.GetServiceReference())) {
    change(*component, &Component::update);
  }
}

Runtime::Components Runtime::watchersOf(const ServiceReferenceU& service) {
  Components found;
  const Any interfaceIds = service.GetProperty(Constants::OBJECTCLASS);
  const std::lock_guard lock(mutex);
  for (const std::string& interfaceId : ref_any_cast<std::vector<std::string>>(interfaceIds)) {
    const auto entry = watchers.find(interfaceId);
    if (entry == watchers.end()) continue;
    std::transform(entry->second.begin(), entry->second.end(), std::back_inserter(found),
                   [](const auto& watcher) { return watcher.second; });
  }
  return found;
}

void Runtime::add(const Bundle& bundle) {
  if (bundle.GetState() != Bundle::STATE_ACTIVE) return;
  const Components components = makeComponents(bundle);
  if (!keep(bundle.GetBundleId(), components)) return;
  for (const std::shared_ptr<Component>& component : components) {
    change(*component, &Component::start);
  }
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
bool Runtime::keep(long bundleId, const Components& components) {
  const std::lock_guard lock(mutex);
  if (stopped || !bundles.emplace(bundleId, components).second) return false;
  for (std::size_t place = 0; place < components.size(); ++place) {
    for (const auto& reference : components[place]->description().references) {
      watchers[reference.interfaceId].emplace(std::pair(bundleId, place), components[place]);
    }
  }
  return true;
}

std::optional<long> Runtime::firstBundle() {
  const std::lock_guard lock(mutex);
  return bundles.empty() ? std::nullopt : std::optional(bundles.begin()->first);
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
  for (std::size_t place = 0; place < components.size(); ++place) {
    forget(bundleId, place, components[place]->description());
  }
  return components;
}

void Runtime::forget(long bundleId, std::size_t place,
                     const detail::ComponentDescription& component) {
  for (const detail::ReferenceDescription& reference : component.references) {
    const auto entry = watchers.find(reference.interfaceId);
    if (entry == watchers.end()) continue;
    entry->second.erase({bundleId, place});
    if (entry->second.empty()) watchers.erase(entry);
  }
}

// An exception affects this component only.
void Runtime::change(Component& component, void (Component::*operation)()) noexcept {
  try {
    (component.*operation)();
  } catch (const std::exception& problem) {
    reportFailure(component, problem);
  }
}

void Runtime::reportFailure(const Component& component, const std::exception& problem) noexcept {
  try {
    const Bundle bundle = component.bundle();
    if (bundle.GetState() != Bundle::STATE_ACTIVE) return;
    report(bundle, component.label() + ": its service cannot be registered: " + problem.what());
  } catch (const std::exception&) {
    // The bundle or the runtime has stopped, or there is no memory for the report.
  }
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
