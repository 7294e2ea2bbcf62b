#include "lifecycle/LibraryBundle.hpp"

#include <dlfcn.h>

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

void LibraryBundle::abandon() {
  const Transition transition(*this);
  const std::exception_ptr thrown = deactivate();
  enter(Bundle::STATE_INSTALLED);
  if (thrown) std::rethrow_exception(thrown);
}

void LibraryBundle::uninstall() {
  const Transition transition(*this);
  requireInstalled();
  if (const std::exception_ptr thrown = deactivate()) {
    core->listeners.reportError(
        *this, location + ": the stop of the bundle " + symbolicName + " failed", thrown);
  }
  core->forget(*this);
  enter(Bundle::STATE_INSTALLED, BundleEvent::BUNDLE_UNRESOLVED);
  enter(Bundle::STATE_UNINSTALLED, BundleEvent::BUNDLE_UNINSTALLED);
}

void LibraryBundle::requireRunningFramework() const {
  if (core->find(id).get() != this || !core->systemBundle().acceptsBundles()) {
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
    setLibraryContext(&handle);
    if (hasActivator(headers)) startActivator();
  } catch (...) {
    enter(Bundle::STATE_STOPPING, BundleEvent::BUNDLE_STOPPING);
    finishStop();
    throw;
  }
  enter(Bundle::STATE_ACTIVE, BundleEvent::BUNDLE_STARTED);
}

std::exception_ptr LibraryBundle::deactivate() {
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

void LibraryBundle::finishStop() {
  closeContext();
  setLibraryContext(nullptr);
  enter(Bundle::STATE_RESOLVED, BundleEvent::BUNDLE_STOPPED);
}

void LibraryBundle::loadLibrary() {
  if (library != nullptr) return;
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

void LibraryBundle::setLibraryContext(BundleContextPrivate* context) {
  // A library does not have to take its context.
  void* const function = library == nullptr ? nullptr : symbol(kSetContext);
  if (function != nullptr) reinterpret_cast<void (*)(BundleContextPrivate*)>(function)(context);
}

void* LibraryBundle::symbol(const std::string& prefix) const {
  return dlsym(library, (prefix + symbolicName).c_str());
}

void LibraryBundle::startActivator() {
  void* const create = symbol(kCreateActivator);
  if (create == nullptr || symbol(kDestroyActivator) == nullptr) {
    refuseBundle(location,
                 "the library lacks " + kCreateActivator + symbolicName + " or " +
                     kDestroyActivator + symbolicName + ", but \"bundle.activator\" is true",
                 "use CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR in a source file that is compiled "
                 "with US_BUNDLE_NAME=" +
                     symbolicName + ", or set \"bundle.activator\" to false");
  }
  try {
    activator = reinterpret_cast<BundleActivator* (*)()>(create)();
    activator->Start(context(shared_from_this()));
  } catch (...) {
    const std::string text = currentExceptionText();
    destroyActivator();
    throw std::runtime_error(location + ": the activator of the bundle " + symbolicName +
                             " failed to start: " + text);
  }
}

void LibraryBundle::stopActivator() {
  if (activator == nullptr) return;
  try {
    activator->Stop(context(shared_from_this()));
  } catch (...) {
    const std::string text = currentExceptionText();
    destroyActivator();
    throw std::runtime_error(location + ": the activator of the bundle " + symbolicName +
                             " failed to stop: " + text);
  }
  destroyActivator();
}

void LibraryBundle::destroyActivator() {
  if (activator == nullptr) return;
  void* const destroy = symbol(kDestroyActivator);
  reinterpret_cast<void (*)(BundleActivator*)>(destroy)(std::exchange(activator, nullptr));
}

}  // namespace cppmicroservices::detail
