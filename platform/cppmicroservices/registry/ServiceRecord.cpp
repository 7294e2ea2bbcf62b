#include "registry/ServiceRecord.hpp"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

#include "cppmicroservices/Constants.h"
#include "properties/text.hpp"
#include "registry/ServiceRegistry.hpp"

namespace cppmicroservices::detail {

namespace {

std::vector<std::string> interfacesOf(const InterfaceMap& service) {
  std::vector<std::string> interfaces;
  for (const auto& [interfaceId, object] : service) {
    if (interfaceId != kFactoryKey) interfaces.emplace_back(withoutGlobalScope(interfaceId));
  }
  std::sort(interfaces.begin(), interfaces.end());
  interfaces.erase(std::unique(interfaces.begin(), interfaces.end()), interfaces.end());
  return interfaces;
}

std::shared_ptr<ServiceFactory> factoryOf(const InterfaceMap& service) {
  const auto entry = service.find(kFactoryKey);
  return entry == service.end() ? nullptr : std::static_pointer_cast<ServiceFactory>(entry->second);
}

bool isSetByFramework(const std::string& key) {
  return key == Constants::OBJECTCLASS || key == Constants::SERVICE_ID ||
         key == Constants::SERVICE_SCOPE;
}

template <class... Integers>
std::optional<int> integerOf(const Any& value) {
  std::optional<int> result;
  const auto take = [&]<class Integer>(const Integer* integer) {
    if (integer != nullptr && std::in_range<int>(*integer)) result = static_cast<int>(*integer);
  };
  (take(any_cast<Integers>(&value)), ...);
  return result;
}

// Returns the ranking among `properties`, 0 when there is none, and nothing when it cannot be used.
std::optional<int> rankingOf(const AnyMap& properties) {
  const auto entry = properties.find(Constants::SERVICE_RANKING);
  if (entry == properties.end()) return 0;
  return integerOf<int, unsigned, long, unsigned long, long long, unsigned long long, short,
                   unsigned short>(entry->second);
}

// Returns an exception that nests the one being handled.
std::exception_ptr nestedFactoryException(const std::string& text) {
  std::exception_ptr nested;
  try {
    std::throw_with_nested(ServiceException(text, ServiceException::FACTORY_EXCEPTION));
  } catch (...) {
    nested = std::current_exception();
  }
  return nested;
}

std::vector<ServiceCount*> countsOf(const std::vector<std::string>& interfaces) {
  std::vector<ServiceCount*> counts;
  counts.reserve(interfaces.size());
  for (const std::string& name : interfaces) counts.push_back(&mutableServiceCount(name));
  return counts;
}

}  // namespace

// Keeps one use alive. Does nothing until it has been given its use, so that it can be allocated
// before anything is changed.
struct ServiceRecord::Hold {
  explicit Hold(std::shared_ptr<ServiceRecord> record) : record(std::move(record)) {}
  ~Hold() {
    if (use) record->release(use);
  }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

  const std::shared_ptr<ServiceRecord> record;
  UsePointer use;
};

ServiceRecord::ServiceRecord(ServiceRegistry& registry, std::shared_ptr<ServiceClient> bundle,
                             InterfaceMapConstPtr objects, const ServiceProperties& properties,
                             long id)
    : bundle(std::move(bundle)),
      id(id),
      interfaces(interfacesOf(*objects)),
      counts(countsOf(interfaces)),
      registry(registry),
      objects(std::move(objects)),
      factory(factoryOf(*this->objects)) {
  publish(withFrameworkProperties(properties));
}

ServiceReferenceU ServiceRecord::reference(const std::string* interfaceId) {
  return ServiceReferenceBase(shared_from_this(), interfaceId);
}

ServiceRegistrationBase ServiceRecord::registration() {
  return ServiceRegistrationBase(shared_from_this());
}

const std::string* ServiceRecord::findInterface(const std::string& name) const {
  const auto place = std::find(interfaces.begin(), interfaces.end(), withoutGlobalScope(name));
  return place == interfaces.end() ? nullptr : &*place;
}

std::shared_ptr<const AnyMap> ServiceRecord::withFrameworkProperties(
    const ServiceProperties& given) const {
  const std::string& scope = factory ? Constants::SCOPE_BUNDLE : Constants::SCOPE_SINGLETON;
  AnyMap all{{Constants::OBJECTCLASS, interfaces},
             {Constants::SERVICE_ID, id},
             {Constants::SERVICE_SCOPE, scope}};
  for (const auto& entry : given) {
    if (isSetByFramework(entry.first)) continue;
    if (!all.insert(entry).second) throwCaseVariants(entry.first);
  }
  return std::make_shared<const AnyMap>(std::move(all));
}

std::shared_ptr<const AnyMap> ServiceRecord::publish(
    std::shared_ptr<const AnyMap> newProperties) noexcept {
  ranking = rankingOf(*newProperties).value_or(0);
  const std::lock_guard lock(mutex);
  return std::exchange(currentProperties, std::move(newProperties));
}

void ServiceRecord::warnOfUnusableRanking() noexcept {
  const auto current = properties();
  if (rankingOf(*current)) return;
  try {
    const Any& ranking = current->at(Constants::SERVICE_RANKING);
    std::string text = "the ranking of a service under ";
    text.append(interfaces.front()).append(" counts as 0: \"").append(Constants::SERVICE_RANKING);
    text.append("\" is ").append(ranking.Empty() ? "empty" : ranking.ToString());
    text.append(", not a number that fits an int");
    registry.listeners.send(
        FrameworkEvent(FrameworkEvent::FRAMEWORK_WARNING, bundle->bundle(), text));
  } catch (...) {
    // The value cannot be written as text, or there is no memory for the warning.
  }
}

std::shared_ptr<const AnyMap> ServiceRecord::properties() const {
  const std::lock_guard lock(mutex);
  return currentProperties;
}

void ServiceRecord::setProperties(const ServiceProperties& given) {
  auto all = withFrameworkProperties(given);
  const auto before = registry.update(*this, std::move(all));
  if (!before) throw std::logic_error("the service is being unregistered");
  warnOfUnusableRanking();
  registry.listeners.send(ServiceEvent(ServiceEvent::SERVICE_MODIFIED, reference()), before.get());
}

InterfaceMapConstPtr ServiceRecord::acquire(const std::shared_ptr<ServiceClient>& user,
                                            std::uint64_t generation) {
  std::unique_lock lock(mutex);
  leftFactory.wait(lock, [&] { return !isInFactoryElsewhere(*user); });
  // Under the lock, so that a bundle that stops finds every service it uses.
  user->requireOpen(generation);
  if (state == State::kUnregistered) return nullptr;
  const auto entry = uses.find(user.get());
  if (entry == uses.end()) return startUse(user, lock);
  if (entry->second->caller == std::thread::id()) return hold(entry->second);
  lock.unlock();
  report("a service factory asked for its own service", ServiceException::FACTORY_RECURSION);
  return nullptr;
}

bool ServiceRecord::isInFactoryElsewhere(const ServiceClient& user) const {
  const auto entry = uses.find(&user);
  return entry != uses.end() && entry->second->caller != std::thread::id() &&
         entry->second->caller != std::this_thread::get_id();
}

bool ServiceRecord::isCurrent(const Use& use) const {
  const auto entry = uses.find(use.user.get());
  return entry != uses.end() && entry->second.get() == &use;
}

void ServiceRecord::endUse(const ServiceClient& user) noexcept {
  const auto entry = uses.find(&user);
  entry->second->user->uses.remove(entry->second->entry);
  uses.erase(entry);
}

InterfaceMapConstPtr ServiceRecord::startUse(const std::shared_ptr<ServiceClient>& user,
                                             std::unique_lock<std::mutex>& lock) {
  auto holder = std::make_shared<Hold>(shared_from_this());
  const auto use = std::make_shared<Use>(
      Use{user, factory ? nullptr : objects, factory, 1, {}, ServiceUses::Entry(*this)});
  uses.emplace(user.get(), use);
  user->uses.add(use->entry);
  // From here on nothing can fail but the factory.
  holder->use = use;
  if (!use->factory) return InterfaceMapConstPtr(std::move(holder), use->service.get());
  use->caller = std::this_thread::get_id();
  lock.unlock();
  return make(std::move(holder));
}

InterfaceMapConstPtr ServiceRecord::make(std::shared_ptr<Hold> holder) {
  Use& use = *holder->use;
  InterfaceMapConstPtr service = callFactory(use);
  std::unique_lock lock(mutex);
  use.caller = std::thread::id();
  leftFactory.notify_all();
  use.service = service;
  const bool isWanted = isCurrent(use);
  if (isWanted && !service) endUse(*use.user);
  lock.unlock();
  // The service may have been unregistered, or its user stopped, in the meantime.
  if (!isWanted) returnToFactory(use);
  if (!isWanted || !service) return nullptr;
  return InterfaceMapConstPtr(std::move(holder), service.get());
}

InterfaceMapConstPtr ServiceRecord::callFactory(const Use& use) noexcept {
  InterfaceMapConstPtr service;
  try {
    service = use.factory->GetService(use.user->bundle(), registration());
    if (isComplete(service)) return service;
    // A factory need not make objects any more while its service goes.
    if (isFindable()) {
      report("a service factory made no object for an interface of its service",
             ServiceException::FACTORY_ERROR);
    }
  } catch (...) {
    if (isFindable()) reportThrown("a service factory threw an exception");
  }
  return nullptr;
}

bool ServiceRecord::isComplete(const InterfaceMapConstPtr& service) const {
  return service && std::all_of(interfaces.begin(), interfaces.end(), [&](const auto& interfaceId) {
           return ExtractInterface(service, interfaceId) != nullptr;
         });
}

void ServiceRecord::report(const char* problem, ServiceException::Type type) noexcept {
  try {
    const ServiceException exception(problem, type);
    registry.listeners.reportError(*bundle, problem, std::make_exception_ptr(exception));
  } catch (const std::bad_alloc&) {
    // There is no memory for the report.
  }
}

void ServiceRecord::reportThrown(const char* problem) noexcept {
  try {
    const std::string text = std::string(problem) + ": " + currentExceptionText();
    registry.listeners.reportError(*bundle, text, nestedFactoryException(text));
  } catch (const std::bad_alloc&) {
    // There is no memory for the report.
  }
}

InterfaceMapConstPtr ServiceRecord::hold(const UsePointer& use) {
  auto holder = std::make_shared<Hold>(shared_from_this());
  holder->use = use;
  ++use->holdCount;
  return InterfaceMapConstPtr(std::move(holder), use->service.get());
}

void ServiceRecord::release(const UsePointer& use) noexcept {
  std::unique_lock lock(mutex);
  if (--use->holdCount > 0 || !isCurrent(*use)) return;
  if (use->factory) {
    // The use stays in its place meanwhile, so that no other thread calls the factory for its user.
    use->caller = std::this_thread::get_id();
    lock.unlock();
    returnToFactory(*use);
    lock.lock();
    leftFactory.notify_all();
  }
  if (isCurrent(*use)) endUse(*use->user);
}

void ServiceRecord::returnToFactory(const Use& use) noexcept {
  if (!use.factory || !use.service) return;
  try {
    use.factory->UngetService(use.user->bundle(), registration(), use.service);
  } catch (...) {
    reportThrown("a service factory threw an exception when it got its service back");
  }
}

void ServiceRecord::releaseFrom(const ServiceClient& user) noexcept {
  UsePointer use;
  {
    const std::lock_guard lock(mutex);
    const auto entry = uses.find(&user);
    if (entry == uses.end()) return;
    // A thread that is in the factory for them returns the objects itself.
    if (entry->second->caller == std::thread::id()) use = entry->second;
    endUse(user);
  }
  if (use) returnToFactory(*use);
}

bool ServiceRecord::unregister() noexcept {
  std::unique_lock lock(mutex);
  if (state != State::kRegistered) return false;
  state = State::kUnregistering;
  lock.unlock();
  registry.remove(*this);
  registry.listeners.send(ServiceEvent(ServiceEvent::SERVICE_UNREGISTERING, reference()));
  dropObjects();
  return true;
}

void ServiceRecord::dropObjects() noexcept {
  // Destroyed without the lock: the destructors may call anything.
  InterfaceMapConstPtr droppedObjects;
  std::shared_ptr<ServiceFactory> droppedFactory;
  Uses ended;
  {
    const std::lock_guard lock(mutex);
    state = State::kUnregistered;
    droppedObjects.swap(objects);
    droppedFactory.swap(factory);
    for (const auto& [user, use] : uses) use->user->uses.remove(use->entry);
    ended.swap(uses);
    // A thread that is in the factory for them returns the objects itself.
    std::erase_if(ended,
                  [](const auto& entry) { return entry.second->caller != std::thread::id(); });
  }
  for (const auto& [user, use] : ended) returnToFactory(*use);
}

std::vector<std::shared_ptr<ServiceClient>> ServiceRecord::users() const {
  const std::lock_guard lock(mutex);
  std::vector<std::shared_ptr<ServiceClient>> result;
  for (const auto& [user, use] : uses) result.push_back(use->user);
  return result;
}

}  // namespace cppmicroservices::detail
