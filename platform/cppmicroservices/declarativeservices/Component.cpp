#include "Component.hpp"

#include <algorithm>
#include <atomic>
#include <exception>
#include <stdexcept>
#include <utility>

#include <cppmicroservices/ServiceInterface.h>
#include <cppmicroservices/detail/ServiceState.h>
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

}  // namespace

Component::Component(const Bundle& owner, detail::ComponentDescription description)
    : context(owner.GetBundleContext()),
      location(owner.GetLocation()),
      component(std::make_shared<const detail::ComponentDescription>(std::move(description))),
      factory(FactoryFunctions::find(owner, component->name)) {
  for (const detail::ReferenceDescription& reference : component->references) {
    serviceCounts.push_back(&detail::serviceCount(reference.interfaceId));
  }
}

void Component::start() {
  std::unique_lock lock(mutex);
  started = true;
  settle(std::move(lock));
}

void Component::update() {
  settle(std::unique_lock(mutex));
}

void Component::stop() {
  std::unique_lock lock(mutex);
  stopped = true;
  settle(std::move(lock));
}

bool Component::isOffered() const {
  const std::lock_guard lock(mutex);
  return current != nullptr;
}

std::string Component::label() const {
  return location + ": component " + component->name;
}

// Registers or unregisters the service as the services that are registered require. Calls others
// without the lock. A thread that finds another one here returns: that one checks again.
void Component::settle(std::unique_lock<std::mutex> lock) {
  outdated = true;
  if (changing) return;
  const FlagGuard raised(changing);
  while (std::exchange(outdated, false)) {
    try {
      step(lock);
    } catch (const std::exception&) {
      // Another thread has left its change to this one.
      if (!outdated) throw;
    }
  }
}

void Component::step(std::unique_lock<std::mutex>& lock) {
  if (current) {
    if (stopped || !isStillBound()) withdraw(lock);
  } else if (started && !stopped) {
    offer(lock);
  }
}

bool Component::isStillBound() const {
  const Services& services = current->boundServices();
  return std::all_of(services.begin(), services.end(), detail::isFindable);
}

// Does nothing when a reference has no service.
void Component::offer(std::unique_lock<std::mutex>& lock) {
  const UnlockGuard unlocked(lock);
  auto services = findServices();
  if (!services) return;
  const auto made =
      std::make_shared<Configuration>(component, factory, context, location, std::move(*services));
  if (!makeCurrent(made)) return;
  try {
    registerService(made);
  } catch (const std::exception&) {
    const std::lock_guard locked(mutex);
    current = nullptr;
    throw;
  }
}

// Returns the preferred service of each reference, nothing when one has none.
std::optional<Component::Services> Component::findServices() {
  // First, so that the others are not looked up while one is missing.
  const bool isOneMissing =
      std::any_of(serviceCounts.begin(), serviceCounts.end(),
                  [](const detail::ServiceCount* count) { return *count == 0; });
  if (isOneMissing) return std::nullopt;
  Services found;
  for (const detail::ReferenceDescription& reference : component->references) {
    found.push_back(context.GetServiceReference(reference.interfaceId));
    if (!detail::isFindable(found.back())) return std::nullopt;
  }
  return found;
}

// Says whether the component was not stopped in the meantime.
bool Component::makeCurrent(const std::shared_ptr<Configuration>& made) {
  const std::lock_guard lock(mutex);
  if (stopped) return false;
  current = made;
  return true;
}

void Component::registerService(const std::shared_ptr<Configuration>& made) {
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

void Component::withdraw(std::unique_lock<std::mutex>& lock) {
  // Other services may take the place of those that have gone.
  outdated = true;
  std::shared_ptr<Configuration> old = std::exchange(current, nullptr);
  const UnlockGuard unlocked(lock);
  try {
    registration.Unregister();
  } catch (const std::logic_error&) {
    // The framework has unregistered it: the bundle stopped while the service was registered.
  }
  registration = nullptr;
  old->close();
  // Without the lock: a service that nothing else refers to is destroyed with it.
  old.reset();
}

}  // namespace cppmicroservices::declarativeservices
