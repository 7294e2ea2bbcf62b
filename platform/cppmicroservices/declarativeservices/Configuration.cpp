#include "Configuration.hpp"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <utility>

#include <cppmicroservices/servicecomponent/ComponentContext.hpp>
#include <cppmicroservices/servicecomponent/ComponentException.hpp>

namespace cppmicroservices::declarativeservices {

using service::component::ComponentException;

namespace {

constexpr const char* kAdvice =
    "; let its constructor do nothing that can fail, or ask for the service again";

// Lives as long as the component keeps it, which may be longer than the configuration.
class BoundServices : public service::component::ComponentContext {
 public:
  explicit BoundServices(std::shared_ptr<const Configuration> owner)
      : configuration(std::move(owner)) {}

 protected:
  std::shared_ptr<void> LocateService(const std::string& name,
                                      const std::string& interfaceId) const override {
    return configuration->locate(name, interfaceId);
  }

 private:
  std::shared_ptr<const Configuration> configuration;
};

}  // namespace

Configuration::Configuration(std::shared_ptr<const detail::ComponentDescription> description,
                             const FactoryFunctions& functions, BundleContext ownContext,
                             std::string file, std::vector<ServiceReferenceU> bound)
    : component(std::move(description)),
      factory(functions),
      context(std::move(ownContext)),
      location(std::move(file)),
      services(std::move(bound)) {}

void Configuration::fail(const std::string& reason) const {
  throw ComponentException(location + ": component " + component->name + ": " + reason);
}

InterfaceMapConstPtr Configuration::GetService(const Bundle&, const ServiceRegistrationBase&) {
  if (!beginMaking()) return endMaking(nullptr);
  try {
    return endMaking(make());
  } catch (...) {
    const std::lock_guard lock(mutex);
    maker = {};
    madeOrNot.notify_all();
    throw;
  }
}

void Configuration::UngetService(const Bundle&, const ServiceRegistrationBase&,
                                 const InterfaceMapConstPtr&) {}

// Says whether the caller has to make the object: it does not exist and no thread is making it.
bool Configuration::beginMaking() {
  std::unique_lock lock(mutex);
  if (maker == std::this_thread::get_id()) {
    fail("its constructor asks for its own service; pass the service on later");
  }
  madeOrNot.wait(lock, [this] { return maker == std::thread::id(); });
  if (closed || instance) return false;
  maker = std::this_thread::get_id();
  return true;
}

std::unique_ptr<Instance> Configuration::make() {
  try {
    auto made =
        std::make_unique<Instance>(factory, std::make_shared<BoundServices>(shared_from_this()));
    checkInterfaces(made->services());
    return made;
  } catch (const ComponentException&) {
    throw;
  } catch (const std::exception& problem) {
    fail(std::string("cannot be made: ") + problem.what() + kAdvice);
  } catch (...) {
    fail(std::string("cannot be made: it threw something that is not a std::exception") + kAdvice);
  }
}

// Keeps `made`, if it is not null, and returns the current object.
InterfaceMapConstPtr Configuration::endMaking(std::unique_ptr<Instance> made) {
  // Declared before the lock, so that an object that came too late is destroyed without it.
  std::unique_ptr<Instance> tooLate;
  const std::lock_guard lock(mutex);
  if (made) {
    maker = {};
    madeOrNot.notify_all();
    (closed ? tooLate : instance) = std::move(made);
  }
  if (!instance) fail("is not active any more: a service that it needs has just gone");
  return instance->services();
}

void Configuration::close() {
  std::unique_ptr<Instance> dropped;
  const std::lock_guard lock(mutex);
  closed = true;
  dropped = std::move(instance);
}

void Configuration::checkInterfaces(const InterfaceMapConstPtr& made) const {
  for (const std::string& interfaceId : component->interfaceIds) {
    if (made->count(interfaceId) == 0) {
      fail("its factory does not provide " + interfaceId +
           ", which the manifest lists; make \"interfaces\" and the factory agree");
    }
  }
}

std::shared_ptr<void> Configuration::locate(const std::string& name,
                                            const std::string& interfaceId) const {
  const auto& references = component->references;
  const auto reference = std::find_if(references.begin(), references.end(),
                                      [&](const auto& other) { return other.name == name; });
  if (reference == references.end()) {
    fail("its factory asks for the reference " + name +
         ", which the manifest does not list; make \"references\" and the factory agree");
  }
  if (reference->interfaceId != interfaceId) {
    fail("its factory takes the reference " + name + " as " + interfaceId + ", which is " +
         reference->interfaceId + " in the manifest; make both agree");
  }
  const auto index = static_cast<std::size_t>(reference - references.begin());
  BundleContext own = context;
  const InterfaceMapConstPtr service = own.GetService(services[index]);
  if (!service) {
    fail("its reference " + name + " has no object: the component behind " + interfaceId +
         " could not be made or has just gone");
  }
  // Shares the map, so that the service counts as used while the component keeps it.
  return {service, ExtractInterface(service, interfaceId).get()};
}

}  // namespace cppmicroservices::declarativeservices
