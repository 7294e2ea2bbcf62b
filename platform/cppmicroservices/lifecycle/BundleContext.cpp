#include "cppmicroservices/BundleContext.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <tuple>

#include "lifecycle/FrameworkCore.hpp"
#include "lifecycle/sendFrameworkEvent.hpp"

namespace cppmicroservices {

namespace {

using detail::ServiceRecord;

void requireRegistered(const detail::BundlePrivate& user, const ServiceReferenceBase& reference) {
  if (!reference) {
    throw std::invalid_argument("the reference names no service that is registered");
  }
  if (!ServiceRecord::of(reference)->isIn(user.core->services)) {
    throw std::invalid_argument("the reference names a service of another framework");
  }
}

void requireObjects(const InterfaceMapConstPtr& service) {
  const bool isFactory = service && service->count(detail::kFactoryKey) > 0;
  if (!service || service->size() == (isFactory ? 1U : 0U)) {
    throw std::invalid_argument("the service to register has no interface");
  }
  for (const auto& [interfaceId, object] : *service) {
    if (!object && !isFactory) {
      throw std::invalid_argument("the service to register has no object for its interface " +
                                  interfaceId);
    }
  }
}

}  // namespace

BundleContext::operator bool() const {
  return d && d->isCurrent(generation);
}

bool BundleContext::operator<(const BundleContext& other) const {
  return std::tie(d, generation) < std::tie(other.d, other.generation);
}

detail::BundlePrivate& BundleContext::valid() const {
  if (!*this) detail::throwInvalidContext();
  return *d;
}

Bundle BundleContext::GetBundle() const {
  return valid().bundle();
}

Bundle BundleContext::GetBundle(long id) const {
  const auto bundle = valid().core->find(id);
  return bundle ? bundle->bundle() : Bundle();
}

std::vector<Bundle> BundleContext::GetBundles(const std::string& location) const {
  return valid().core->bundlesAt(std::filesystem::absolute(location).string());
}

std::vector<Bundle> BundleContext::GetBundles() const {
  return valid().core->bundles();
}

std::vector<Bundle> BundleContext::InstallBundles(const std::string& location) {
  detail::BundlePrivate& installer = valid();
  return installer.core->install(installer, location);
}

ServiceRegistrationU BundleContext::RegisterService(const InterfaceMapConstPtr& service,
                                                    const ServiceProperties& properties) {
  detail::FrameworkCore& core = *valid().core;
  requireObjects(service);
  return core.services.registerService(d, generation, service, properties)->registration();
}

std::vector<ServiceReferenceU> BundleContext::GetServiceReferences(const std::string& interfaceId,
                                                                   const std::string& filter) {
  auto found = valid().core->services.find(interfaceId, filter);
  // Checked again: in a framework that has stopped meanwhile there was nothing to find.
  valid();
  return found;
}

ServiceReferenceU BundleContext::GetServiceReference(const std::string& interfaceId) {
  const auto found = GetServiceReferences(interfaceId);
  return found.empty() ? ServiceReferenceU() : found.front();
}

std::shared_ptr<void> BundleContext::GetService(const ServiceReferenceBase& reference) {
  const InterfaceMapConstPtr service = acquire(reference);
  void* const object = ExtractInterface(service, reference.GetInterfaceId()).get();
  return object == nullptr ? nullptr : std::shared_ptr<void>(service, object);
}

InterfaceMapConstPtr BundleContext::GetService(const ServiceReferenceU& reference) {
  return acquire(reference);
}

InterfaceMapConstPtr BundleContext::acquire(const ServiceReferenceBase& reference) const {
  requireRegistered(valid(), reference);
  return ServiceRecord::of(reference)->acquire(d, generation);
}

ListenerToken BundleContext::AddServiceListener(const ServiceListener& listener,
                                                const std::string& filter) {
  return valid().core->listeners.add(d, generation, listener, filter);
}

ListenerToken BundleContext::AddBundleListener(const BundleListener& listener) {
  return valid().core->listeners.add(d, generation, listener);
}

ListenerToken BundleContext::AddFrameworkListener(const FrameworkListener& listener) {
  return valid().core->listeners.add(d, generation, listener);
}

void BundleContext::removeListener(const ServiceListener& listener, Equal<ServiceListener> equal) {
  valid().core->listeners.remove(*d, listener, equal);
}

void BundleContext::removeListener(const BundleListener& listener, Equal<BundleListener> equal) {
  valid().core->listeners.remove(*d, listener, equal);
}

void BundleContext::removeListener(const FrameworkListener& listener,
                                   Equal<FrameworkListener> equal) {
  valid().core->listeners.remove(*d, listener, equal);
}

void BundleContext::RemoveListener(ListenerToken token) {
  valid().core->listeners.remove(token);
}

void detail::sendFrameworkEvent(const BundleContext& context, const FrameworkEvent& event) {
  BundlePrivate::of(context).core->listeners.send(event);
}

detail::ServiceObjectsBase::ServiceObjectsBase(const BundleContext& bundleContext,
                                               const ServiceReferenceBase& service)
    : reference(service), context(std::make_unique<BundleContext>(bundleContext)) {
  requireRegistered(BundlePrivate::of(*context), reference);
}

detail::ServiceObjectsBase::ServiceObjectsBase(ServiceObjectsBase&&) noexcept = default;
detail::ServiceObjectsBase& detail::ServiceObjectsBase::operator=(ServiceObjectsBase&&) noexcept =
    default;
detail::ServiceObjectsBase::~ServiceObjectsBase() = default;

std::shared_ptr<void> detail::ServiceObjectsBase::object() const {
  const InterfaceMapConstPtr service = interfaceMap();
  void* const object = ExtractInterface(service, reference.GetInterfaceId()).get();
  return object == nullptr ? nullptr : std::shared_ptr<void>(service, object);
}

InterfaceMapConstPtr detail::ServiceObjectsBase::interfaceMap() const {
  BundlePrivate& user = BundlePrivate::of(*context);
  // Not BundleContext::GetService, which throws when the service is unregistered after this test.
  return reference ? ServiceRecord::of(reference)->acquire(user.shared_from_this(),
                                                           BundlePrivate::generationOf(*context))
                   : nullptr;
}

}  // namespace cppmicroservices
