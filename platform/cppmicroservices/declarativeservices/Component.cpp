#include "Component.hpp"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include <cppmicroservices/ServiceInterface.h>
#include <cppmicroservices/servicecomponent/ComponentConstants.hpp>

namespace cppmicroservices::declarativeservices {

namespace constants = service::component::ComponentConstants;

namespace {

std::atomic<unsigned long> lastComponentId{0};

// Sets a flag until the end of a scope.
class FlagGuard {
 public:
  explicit FlagGuard(bool& flag) : flag(flag) { flag = true; }
  FlagGuard(const FlagGuard&) = delete;
  FlagGuard& operator=(const FlagGuard&) = delete;
  ~FlagGuard() { flag = false; }

 private:
  bool& flag;
};

// Releases a lock until the end of a scope.
class UnlockGuard {
 public:
  explicit UnlockGuard(std::unique_lock<std::mutex>& lock) : lock(lock) { lock.unlock(); }
  UnlockGuard(const UnlockGuard&) = delete;
  UnlockGuard& operator=(const UnlockGuard&) = delete;
  ~UnlockGuard() { lock.lock(); }

 private:
  std::unique_lock<std::mutex>& lock;
};

bool contains(const std::vector<ServiceReferenceU>& services, const ServiceReferenceU& service) {
  return std::find(services.begin(), services.end(), service) != services.end();
}

}  // namespace

Component::Component(const Bundle& owner, detail::ComponentDescription description)
    : bundle(owner),
      context(owner.GetBundleContext()),
      component(std::make_shared<const detail::ComponentDescription>(std::move(description))),
      factory(FactoryFunctions::find(owner, component->name)) {
  for (const detail::ReferenceDescription& reference : component->references) {
    references.push_back({reference.interfaceId, {}});
  }
}

void Component::start() {
  for (Reference& reference : references) {
    const auto found = context.GetServiceReferences(reference.interfaceId);
    const std::lock_guard lock(mutex);
    for (const ServiceReferenceU& service : found) {
      if (!contains(wentEarly, service) && !contains(reference.candidates, service)) {
        reference.candidates.push_back(service);
      }
    }
  }
  {
    const std::lock_guard lock(mutex);
    started = true;
    wentEarly.clear();
  }
  settle();
}

void Component::serviceCame(const ServiceReferenceU& service) {
  {
    const std::lock_guard lock(mutex);
    for (Reference& reference : references) {
      if (service.IsConvertibleTo(reference.interfaceId) &&
          !contains(reference.candidates, service)) {
        reference.candidates.push_back(service);
      }
    }
  }
  settle();
}

void Component::serviceWent(const ServiceReferenceU& service) {
  {
    const std::lock_guard lock(mutex);
    for (Reference& reference : references) std::erase(reference.candidates, service);
    if (!started) wentEarly.push_back(service);
  }
  settle();
}

void Component::stop() {
  {
    const std::lock_guard lock(mutex);
    stopped = true;
  }
  settle();
}

bool Component::isOffered() const {
  const std::lock_guard lock(mutex);
  return current != nullptr;
}

// Registers or unregisters the service as the candidates of the references require. Calls others
// without the lock. A thread that finds another one here returns: that one checks again.
void Component::settle() {
  std::unique_lock lock(mutex);
  if (changing) return;
  const FlagGuard raised(changing);
  while (step(lock)) {
  }
}

bool Component::step(std::unique_lock<std::mutex>& lock) {
  if (current && (stopped || !isStillBound())) {
    const std::shared_ptr<Configuration> old = std::exchange(current, nullptr);
    const UnlockGuard unlocked(lock);
    withdraw(*old);
    return true;
  }
  if (!current && started && !stopped && hasAllServices()) {
    current = std::make_shared<Configuration>(component, factory, context, bestServices());
    const std::shared_ptr<Configuration> made = current;
    const UnlockGuard unlocked(lock);
    offer(made);
    return true;
  }
  return false;
}

bool Component::hasAllServices() const {
  return std::none_of(references.begin(), references.end(),
                      [](const Reference& reference) { return reference.candidates.empty(); });
}

bool Component::isStillBound() const {
  return std::equal(references.begin(), references.end(), current->boundServices().begin(),
                    [](const Reference& reference, const ServiceReferenceU& service) {
                      return contains(reference.candidates, service);
                    });
}

std::vector<ServiceReferenceU> Component::bestServices() const {
  std::vector<ServiceReferenceU> best;
  for (const Reference& reference : references) {
    best.push_back(*std::max_element(reference.candidates.begin(), reference.candidates.end()));
  }
  return best;
}

void Component::offer(const std::shared_ptr<Configuration>& made) {
  const std::shared_ptr<ServiceFactory> service = made;
  const auto interfaces = std::make_shared<InterfaceMap>();
  for (const std::string& interfaceId : component->interfaceIds) {
    interfaces->emplace(interfaceId, service);
  }
  interfaces->emplace(detail::kFactoryKey, service);
  ServiceProperties properties = component->properties;
  properties[constants::COMPONENT_NAME] = component->name;
  properties[constants::COMPONENT_ID] = ++lastComponentId;
  registration = context.RegisterService(interfaces, properties);
}

void Component::withdraw(Configuration& old) {
  try {
    registration.Unregister();
  } catch (const std::logic_error&) {
    // The framework has unregistered it: the bundle stopped while the service was registered.
  }
  registration = nullptr;
  old.close();
}

}  // namespace cppmicroservices::declarativeservices
