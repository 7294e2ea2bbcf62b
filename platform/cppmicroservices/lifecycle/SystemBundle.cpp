#include "lifecycle/SystemBundle.hpp"

#include <stdexcept>

#include "cppmicroservices/Constants.h"
#include "lifecycle/FrameworkCore.hpp"

namespace cppmicroservices::detail {

namespace {

AnyMap systemHeaders() {
  return {{Constants::BUNDLE_SYMBOLICNAME, Constants::SYSTEM_BUNDLE_SYMBOLICNAME},
          {Constants::BUNDLE_NAME, Constants::SYSTEM_BUNDLE_LOCATION}};
}

}  // namespace

SystemBundle::SystemBundle(std::shared_ptr<FrameworkCore> framework)
    : BundlePrivate(std::move(framework), 0, Constants::SYSTEM_BUNDLE_LOCATION, systemHeaders()) {}

void SystemBundle::init() {
  const Transition transition(*this);
  initialize();
}

void SystemBundle::initialize() {
  if (isRunning()) return;
  openContext();
  enter(Bundle::STATE_STARTING);
}

void SystemBundle::start() {
  const Transition transition(*this);
  initialize();
  if (state == Bundle::STATE_ACTIVE) return;
  enter(Bundle::STATE_ACTIVE);
  core->listeners.send(FrameworkEvent(FrameworkEvent::FRAMEWORK_STARTED, bundle(), ""));
}

void SystemBundle::stop() {
  const Transition transition(*this);
  if (!isRunning()) return;
  enter(Bundle::STATE_STOPPING, BundleEvent::BUNDLE_STOPPING);
  stopBundles();
  // The remaining listeners are the host's, which is not told that its own services go.
  core->listeners.removeAllOf(*this);
  closeContext();
  enter(Bundle::STATE_RESOLVED);
}

void SystemBundle::uninstall() {
  throw std::runtime_error("a framework cannot be uninstalled");
}

void SystemBundle::stopBundles() {
  const auto bundles = core->libraryBundles();
  for (auto bundle = bundles.rbegin(); bundle != bundles.rend(); ++bundle) {
    try {
      (*bundle)->abandon();
    } catch (...) {
      core->listeners.reportError(**bundle,
                                  (*bundle)->location + ": the bundle " + (*bundle)->symbolicName +
                                      " failed to stop with its framework",
                                  std::current_exception());
    }
    core->forget(**bundle);
  }
}

bool SystemBundle::acceptsBundles() const {
  return state == Bundle::STATE_STARTING || state == Bundle::STATE_ACTIVE;
}

bool SystemBundle::isRunning() const {
  return acceptsBundles() || state == Bundle::STATE_STOPPING;
}

FrameworkEvent SystemBundle::waitForStop(const std::chrono::milliseconds& timeout) {
  std::unique_lock lock(mutex);
  const auto hasStopped = [this] { return !isRunning(); };
  if (timeout == std::chrono::milliseconds::zero()) {
    changed.wait(lock, hasStopped);
  } else if (!changed.wait_for(lock, timeout, hasStopped)) {
    return FrameworkEvent(FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT, bundle(), "");
  }
  const auto type = state == Bundle::STATE_RESOLVED ? FrameworkEvent::FRAMEWORK_STOPPED
                                                    : FrameworkEvent::FRAMEWORK_ERROR;
  return FrameworkEvent(type, bundle(), "");
}

}  // namespace cppmicroservices::detail
