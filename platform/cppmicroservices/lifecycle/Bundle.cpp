#include "cppmicroservices/Bundle.h"

#include <dlfcn.h>

#include <ostream>
#include <stdexcept>
#include <tuple>

#include "lifecycle/FrameworkCore.hpp"

namespace cppmicroservices {

Bundle::Bundle(std::shared_ptr<detail::BundlePrivate> bundle,
               std::shared_ptr<detail::FrameworkOwner> frameworkOwner)
    : d(std::move(bundle)), owner(std::move(frameworkOwner)) {}

bool Bundle::operator<(const Bundle& other) const {
  if (!d || !other.d) return d != nullptr;
  return std::tie(d->core, d->id) < std::tie(other.d->core, other.d->id);
}

detail::BundlePrivate& Bundle::valid() const {
  if (!d) throw std::invalid_argument("invalid bundle");
  return *d;
}

Bundle::State Bundle::GetState() const {
  return valid().state;
}

BundleContext Bundle::GetBundleContext() const {
  return valid().context(d);
}

long Bundle::GetBundleId() const {
  return valid().id;
}
std::string Bundle::GetLocation() const {
  return valid().location;
}
std::string Bundle::GetSymbolicName() const {
  return valid().symbolicName;
}
BundleVersion Bundle::GetVersion() const {
  return valid().version;
}
const AnyMap& Bundle::GetHeaders() const {
  return valid().headers;
}

std::map<std::string, Any> Bundle::GetProperties() const {
  return {valid().headers.begin(), valid().headers.end()};
}

Any Bundle::GetProperty(const std::string& key) const {
  const auto entry = valid().headers.find(key);
  return entry == d->headers.end() ? Any() : entry->second;
}

std::vector<std::string> Bundle::GetPropertyKeys() const {
  std::vector<std::string> keys;
  for (const auto& entry : valid().headers) keys.push_back(entry.first);
  return keys;
}

void* Bundle::GetSymbol(void* handle, const std::string& name) const {
  if (valid().state != STATE_ACTIVE) {
    throw std::runtime_error("the bundle " + d->symbolicName + " is not active");
  }
  if (handle == nullptr || name.empty()) {
    throw std::invalid_argument("no library or no name to look a symbol up with");
  }
  return dlsym(handle, name.c_str());
}

std::vector<ServiceReferenceU> Bundle::GetRegisteredServices() const {
  valid().requireInstalled();
  std::vector<ServiceReferenceU> references;
  for (const auto& service : d->core->services.of(*d)) references.push_back(service->reference());
  return references;
}

std::vector<ServiceReferenceU> Bundle::GetServicesInUse() const {
  valid().requireInstalled();
  std::vector<ServiceReferenceU> references;
  for (const auto& service : d->uses.all()) {
    if (service->isFindable()) references.push_back(service->reference());
  }
  return references;
}

// Each call keeps a handle: code that runs meanwhile may assign to this one, and the framework must
// not stop before the call has ended.
void Bundle::Start() {
  const Bundle self(*this);
  self.valid().start();
}
void Bundle::Stop() {
  const Bundle self(*this);
  self.valid().stop();
}
void Bundle::Uninstall() {
  const Bundle self(*this);
  self.valid().uninstall();
}

std::ostream& operator<<(std::ostream& os, const Bundle& bundle) {
  if (!bundle) return os << "Bundle[invalid]";
  return os << "Bundle[id=" << bundle.GetBundleId() << ", loc=" << bundle.GetLocation()
            << ", name=" << bundle.GetSymbolicName() << ", state=" << bundle.GetState() << "]";
}

std::ostream& operator<<(std::ostream& os, const Bundle* bundle) {
  return os << (bundle == nullptr ? Bundle() : *bundle);
}

std::ostream& operator<<(std::ostream& os, Bundle::State state) {
  switch (state) {
    case Bundle::STATE_UNINSTALLED:
      return os << "UNINSTALLED";
    case Bundle::STATE_INSTALLED:
      return os << "INSTALLED";
    case Bundle::STATE_RESOLVED:
      return os << "RESOLVED";
    case Bundle::STATE_STARTING:
      return os << "STARTING";
    case Bundle::STATE_STOPPING:
      return os << "STOPPING";
    case Bundle::STATE_ACTIVE:
      return os << "ACTIVE";
    default:
      return os;
  }
}

}  // namespace cppmicroservices
