#include "lifecycle/LibraryBundle.hpp"

#include <dlfcn.h>

#include <new>
#include <stdexcept>
#include <utility>

#include "cppmicroservices/Constants.h"
#include "lifecycle/FrameworkCore.hpp"
#include "manifest/bundleManifests.hpp"
#include "properties/text.hpp"
#include "quenlith/elf/checkBundleLibrary.hpp"
#include "quenlith/elf/describeLoadError.hpp"
#include "quenlith/elf/loadedLibraries.hpp"

// The header of activators requires the name of a bundle, which does not matter here.
#define US_BUNDLE_NAME framework
#include "cppmicroservices/BundleActivator.h"

namespace cppmicroservices::detail {

namespace {

const std::string kSetContext = "_us_set_bundle_context_instance_";
const std::string kCreateActivator = "_us_create_activator_";
const std::string kDestroyActivator = "_us_destroy_activator_";

namespace elf = quenlith::elf;

std::string ownFile() {
  return elf::fileOfCode(reinterpret_cast<const void*>(&ownFile));
}

bool hasActivator(const AnyMap& headers) {
  const auto entry = headers.find(Constants::BUNDLE_ACTIVATOR);
  return entry != headers.end() && ref_any_cast<bool>(entry->second);
}

}  // namespace

LibraryBundle::LibraryBundle(std::shared_ptr<FrameworkCore> core, long id, std::string location,
                             AnyMap headers, std::size_t libraryBundleCount)
    : BundlePrivate(std::move(core), id, std::move(location), std::move(headers)),
      libraryBundleCount(libraryBundleCount) {}

void LibraryBundle::start() {
  const Transition transition(*this);
  requireInstalled();
  requireRunningFramework();
  if (state != Bundle::STATE_ACTIVE) activate();
}

void LibraryBundle::stop() {
  const Transition transition(*this);
  requireInstalled();
  if (const std::exception_ptr thrown = deactivate()) std::rethrow_exception(thrown);
}

void LibraryBundle::abandon() noexcept {
  if (!leaveFramework()) return;
  if (const auto framework = core->findSystemBundle()) framework->endOneStop();
}

// Returns false when the transition that is under way has to do it.
bool LibraryBundle::leaveFramework() noexcept {
  const Transition transition(*this, std::nothrow);
  if (!transition) return false;
  // It may have been uninstalled in the meantime.
  if (state == Bundle::STATE_UNINSTALLED) return true;
  if (const std::exception_ptr thrown = deactivate()) {
    reportFailedStop(" failed to stop with its framework", thrown);
  }
  enter(Bundle::STATE_INSTALLED);
  core->forget(*this);
  return true;
}

void LibraryBundle::uninstall() {
  const Transition transition(*this);
  requireInstalled();
  if (const std::exception_ptr thrown = deactivate()) {
    reportFailedStop(" failed to stop when it was uninstalled", thrown);
  }
  core->forget(*this);
  enter(Bundle::STATE_INSTALLED, BundleEvent::BUNDLE_UNRESOLVED);
  enter(Bundle::STATE_UNINSTALLED, BundleEvent::BUNDLE_UNINSTALLED);
}

void LibraryBundle::reportFailedStop(const char* occasion,
                                     const std::exception_ptr& cause) noexcept {
  try {
    core->listeners.reportError(*this, location + ": the bundle " + symbolicName + occasion, cause);
  } catch (const std::bad_alloc&) {
    // There is no memory for the report.
  }
}

void LibraryBundle::requireRunningFramework() const {
  const auto framework = core->findSystemBundle();
  if (core->find(id).get() != this || !framework || !framework->acceptsBundles()) {
    throw std::runtime_error(location + ": the framework of the bundle " + symbolicName +
                             " was stopped; start a framework and install the bundle again");
  }
}

void LibraryBundle::activate() {
  if (state == Bundle::STATE_INSTALLED) {
    enter(Bundle::STATE_RESOLVED, BundleEvent::BUNDLE_RESOLVED);
  }
  openContext();
  enter(Bundle::STATE_STARTING, BundleEvent::BUNDLE_STARTING);
  try {
    loadLibrary();
    if (contexts != nullptr) contexts->give(shared_from_this());
    if (hasActivator(headers)) startActivator();
  } catch (...) {
    enter(Bundle::STATE_STOPPING, BundleEvent::BUNDLE_STOPPING);
    finishStop();
    throw;
  }
  enter(Bundle::STATE_ACTIVE, BundleEvent::BUNDLE_STARTED);
}

std::exception_ptr LibraryBundle::deactivate() noexcept {
  if (state != Bundle::STATE_ACTIVE) return nullptr;
  enter(Bundle::STATE_STOPPING, BundleEvent::BUNDLE_STOPPING);
  std::exception_ptr thrown;
  try {
    stopActivator();
  } catch (...) {
    thrown = std::current_exception();
  }
  finishStop();
  return thrown;
}

void LibraryBundle::finishStop() noexcept {
  // The library has its context until its services are gone: their destructors may use it.
  closeContext();
  if (contexts != nullptr) contexts->takeBack(weak_from_this());
  enter(Bundle::STATE_RESOLVED, BundleEvent::BUNDLE_STOPPED);
}

void LibraryBundle::loadLibrary() {
  if (library == nullptr) openLibrary();
  const auto set = reinterpret_cast<BundleContextPrivate::Set>(symbol(kSetContext));
  contexts = set == nullptr ? nullptr : &BundleContextPrivate::of(set);
}

void LibraryBundle::openLibrary() {
  // A bundle for another framework must not be loaded: that would run its code, and it would crash.
  if (const auto fault = elf::checkBundleLibrary(location, ownFile())) {
    refuseBundle(location, fault->what, fault->remedy);
  }
  library = dlopen(location.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    const elf::Fault fault = elf::describeLoadError(location, dlerror());
    refuseBundle(location, fault.what, fault.remedy);
  }
}

void* LibraryBundle::symbol(const std::string& prefix) const {
  return dlsym(library, (prefix + symbolicName).c_str());
}

void LibraryBundle::startActivator() {
  const auto create = reinterpret_cast<CreateActivator>(symbol(kCreateActivator));
  destroy = reinterpret_cast<DestroyActivator>(symbol(kDestroyActivator));
  if (create == nullptr || destroy == nullptr) {
    refuseBundle(location,
                 "the library lacks " + kCreateActivator + symbolicName + " or " +
                     kDestroyActivator + symbolicName + ", but \"bundle.activator\" is true",
                 "use CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR in a source file that is compiled "
                 "with US_BUNDLE_NAME=" +
                     symbolicName + ", or set \"bundle.activator\" to false");
  }
  std::exception_ptr thrown;
  try {
    activator = create();
    activator->Start(context(shared_from_this()));
    return;
  } catch (...) {
    thrown = std::current_exception();
  }
  destroyActivator();
  throwActivatorFailed("start", thrown);
}

void LibraryBundle::stopActivator() {
  if (activator == nullptr) return;
  std::exception_ptr thrown;
  try {
    activator->Stop(context(shared_from_this()));
  } catch (...) {
    thrown = std::current_exception();
  }
  destroyActivator();
  if (thrown) throwActivatorFailed("stop", thrown);
}

void LibraryBundle::destroyActivator() {
  if (activator != nullptr) destroy(std::exchange(activator, nullptr));
}

void LibraryBundle::throwActivatorFailed(const char* action,
                                         const std::exception_ptr& cause) const {
  std::string text = location + ": the activator of the bundle " + symbolicName + " failed to ";
  text.append(action).append(": ").append(textOf(cause));
  throw std::runtime_error(text);
}

}  // namespace cppmicroservices::detail
