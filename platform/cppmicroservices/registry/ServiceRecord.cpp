#include "registry/ServiceRecord.hpp"

#include <algorithm>
#include <stdexcept>

#include "cppmicroservices/Constants.h"
#include "lifecycle/FrameworkCore.hpp"
#include "properties/text.hpp"

namespace cppmicroservices::detail {

namespace {

std::vector<std::string> interfacesOf(const InterfaceMap& service) {
  std::vector<std::string> interfaces;
  for (const auto& [interfaceId, object] : service) {
    if (interfaceId != kFactoryKey) interfaces.push_back(interfaceId);
  }
  std::sort(interfaces.begin(), interfaces.end());
  return interfaces;
}

bool isSetByFramework(const std::string& key) {
  return key == Constants::OBJECTCLASS || key == Constants::SERVICE_ID ||
         key == Constants::SERVICE_SCOPE;
}

// Makes an exception with the one that is being handled nested in it.
std::exception_ptr nestedFactoryException(const std::string& text) {
  std::exception_ptr nested;
  try {
    std::throw_with_nested(ServiceException(text, ServiceException::FACTORY_EXCEPTION));
  } catch (...) {
    nested = std::current_exception();
  }
  return nested;
}

}  // namespace

void throwCaseVariants(const std::string& key) {
  throw std::runtime_error("keys of the properties differ from \"" + key + "\" in case only");
}

// Keeps one use: its end is that of the last pointer that `hold` returned.
class ServiceRecord::Hold {
 public:
  Hold(std::shared_ptr<ServiceRecord> ofRecord, UsePointer ofUse)
      : record(std::move(ofRecord)), use(std::move(ofUse)) {}
  ~Hold() { record->release(use); }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

 private:
  const std::shared_ptr<ServiceRecord> record;
  const UsePointer use;
};

ServiceRecord::ServiceRecord(std::shared_ptr<BundlePrivate> registeredBy,
                             InterfaceMapConstPtr service, const ServiceProperties& properties,
                             long number)
    : bundle(std::move(registeredBy)),
      id(number),
      interfaces(interfacesOf(*service)),
      objects(std::move(service)),
      factory(std::static_pointer_cast<ServiceFactory>(
          interfaces.size() < objects->size() ? objects->at(kFactoryKey) : nullptr)) {
  publish(withFrameworkProperties(properties));
}

ServiceReferenceU ServiceRecord::reference(const std::string* seenAs) {
  return ServiceReferenceBase(shared_from_this(), seenAs);
}

ServiceRegistrationBase ServiceRecord::registration() {
  return ServiceRegistrationBase(shared_from_this());
}

const std::string* ServiceRecord::findInterface(const std::string& name) const {
  const auto place = std::find(interfaces.begin(), interfaces.end(), name);
  return place == interfaces.end() ? nullptr : &*place;
}

AnyMap ServiceRecord::withFrameworkProperties(const ServiceProperties& given) const {
  const std::string& scope = factory ? Constants::SCOPE_BUNDLE : Constants::SCOPE_SINGLETON;
  AnyMap all{{Constants::OBJECTCLASS, interfaces},
             {Constants::SERVICE_ID, id},
             {Constants::SERVICE_SCOPE, scope}};
  for (const auto& entry : given) {
    if (isSetByFramework(entry.first)) continue;
    if (!all.insert(entry).second) throwCaseVariants(entry.first);
  }
  return all;
}

void ServiceRecord::publish(AnyMap newProperties) {
  const auto entry = newProperties.find(Constants::SERVICE_RANKING);
  const int* value = entry == newProperties.end() ? nullptr : any_cast<int>(&entry->second);
  ranking = value == nullptr ? 0 : *value;
  auto shared = std::make_shared<const AnyMap>(std::move(newProperties));
  const std::lock_guard lock(mutex);
  currentProperties = std::move(shared);
}

std::shared_ptr<const AnyMap> ServiceRecord::properties() const {
  const std::lock_guard lock(mutex);
  return currentProperties;
}

void ServiceRecord::setProperties(const ServiceProperties& given) {
  AnyMap all = withFrameworkProperties(given);
  const auto before = properties();
  bundle->core->services.reorder(shared_from_this(), [&] { publish(std::move(all)); });
  bundle->core->listeners.send(ServiceEvent(ServiceEvent::SERVICE_MODIFIED, reference()),
                               before.get());
}

InterfaceMapConstPtr ServiceRecord::acquire(const std::shared_ptr<BundlePrivate>& user) {
  std::unique_lock lock(mutex);
  // Under the lock, so that a bundle that stops finds every service it holds.
  user->requireOpen();
  made.wait(lock, [&] { return !isMadeElsewhere(*user); });
  if (state == State::kUnregistered) return nullptr;
  UsePointer& entry = uses[user.get()];
  if (!entry) {
    entry = std::make_shared<Use>(Use{user, factory ? nullptr : objects, factory, 0, {}});
    if (!factory) return hold(entry);
    const UsePointer use = entry;
    use->maker = std::this_thread::get_id();
    lock.unlock();
    return make(use);
  }
  if (entry->maker == std::thread::id()) return hold(entry);
  lock.unlock();
  report(ServiceException("a service factory asked for the service that it was making",
                          ServiceException::FACTORY_RECURSION));
  return nullptr;
}

bool ServiceRecord::isMadeElsewhere(const BundlePrivate& user) const {
  const auto entry = uses.find(&user);
  return entry != uses.end() && entry->second->maker != std::thread::id() &&
         entry->second->maker != std::this_thread::get_id();
}

bool ServiceRecord::isCurrent(const UsePointer& use) const {
  const auto entry = uses.find(use->user.get());
  return entry != uses.end() && entry->second == use;
}

InterfaceMapConstPtr ServiceRecord::make(const UsePointer& use) {
  InterfaceMapConstPtr service = callFactory(*use);
  std::unique_lock lock(mutex);
  use->maker = std::thread::id();
  made.notify_all();
  use->service = service;
  // The service may have been unregistered, or its user stopped, in the meantime.
  if (isCurrent(use)) {
    if (service) return hold(use);
    uses.erase(use->user.get());
    return nullptr;
  }
  lock.unlock();
  giveBack(*use);
  return nullptr;
}

InterfaceMapConstPtr ServiceRecord::callFactory(const Use& use) {
  InterfaceMapConstPtr service;
  try {
    service = use.factory->GetService(use.user->bundle(), registration());
  } catch (...) {
    reportThrown("a service factory threw an exception");
    return nullptr;
  }
  if (isWhole(service)) return service;
  report(ServiceException("a service factory made no object for an interface of its service",
                          ServiceException::FACTORY_ERROR));
  return nullptr;
}

bool ServiceRecord::isWhole(const InterfaceMapConstPtr& service) const {
  return service && std::all_of(interfaces.begin(), interfaces.end(), [&](const auto& interfaceId) {
           return ExtractInterface(service, interfaceId) != nullptr;
         });
}

void ServiceRecord::report(const ServiceException& exception) {
  bundle->core->reportError(*bundle, exception.what(), std::make_exception_ptr(exception));
}

void ServiceRecord::reportThrown(const std::string& problem) {
  const std::string text = problem + ": " + currentExceptionText();
  bundle->core->reportError(*bundle, text, nestedFactoryException(text));
}

InterfaceMapConstPtr ServiceRecord::hold(const UsePointer& use) {
  auto holder = std::make_shared<Hold>(shared_from_this(), use);
  ++use->count;
  return InterfaceMapConstPtr(std::move(holder), use->service.get());
}

void ServiceRecord::release(const UsePointer& use) {
  std::unique_lock lock(mutex);
  if (--use->count > 0 || !isCurrent(use)) return;
  uses.erase(use->user.get());
  lock.unlock();
  giveBack(*use);
}

void ServiceRecord::giveBack(const Use& use) {
  if (!use.factory || !use.service) return;
  try {
    use.factory->UngetService(use.user->bundle(), registration(), use.service);
  } catch (...) {
    reportThrown("a service factory threw an exception when it got its service back");
  }
}

void ServiceRecord::releaseFrom(const BundlePrivate& user) {
  UsePointer use;
  {
    const std::lock_guard lock(mutex);
    const auto entry = uses.find(&user);
    if (entry == uses.end()) return;
    // The thread that makes the objects gives them back itself.
    if (entry->second->maker == std::thread::id()) use = entry->second;
    uses.erase(entry);
  }
  if (use) giveBack(*use);
}

bool ServiceRecord::unregister() {
  std::unique_lock lock(mutex);
  if (state != State::kRegistered) return false;
  state = State::kUnregistering;
  lock.unlock();
  bundle->core->services.remove(*this);
  bundle->core->listeners.send(ServiceEvent(ServiceEvent::SERVICE_UNREGISTERING, reference()));
  dropObjects();
  for (const auto& user : users()) releaseFrom(*user);
  return true;
}

void ServiceRecord::dropObjects() {
  InterfaceMapConstPtr droppedObjects;
  std::shared_ptr<ServiceFactory> droppedFactory;
  const std::lock_guard lock(mutex);
  state = State::kUnregistered;
  // They go after the lock: their destructors may call anything.
  droppedObjects.swap(objects);
  droppedFactory.swap(factory);
}

std::vector<std::shared_ptr<BundlePrivate>> ServiceRecord::users() const {
  const std::lock_guard lock(mutex);
  std::vector<std::shared_ptr<BundlePrivate>> result;
  for (const auto& [user, use] : uses) result.push_back(use->user);
  return result;
}

}  // namespace cppmicroservices::detail
