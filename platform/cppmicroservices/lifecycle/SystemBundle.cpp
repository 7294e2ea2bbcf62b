#include "lifecycle/SystemBundle.hpp"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

#include "cppmicroservices/Constants.h"
#include "lifecycle/FrameworkCore.hpp"

namespace cppmicroservices::detail {

namespace {

// A wait of this length never ends by itself, and the time of its end can be calculated.
constexpr std::chrono::milliseconds kLongestWait = std::chrono::hours(24 * 365 * 100);

AnyMap systemHeaders() {
  return {{Constants::BUNDLE_SYMBOLICNAME, Constants::SYSTEM_BUNDLE_SYMBOLICNAME},
          {Constants::BUNDLE_NAME, Constants::SYSTEM_BUNDLE_LOCATION},
          // The version of the API, which a host may compare with what it needs.
          {Constants::BUNDLE_VERSION, std::string("3.8.0")}};
}

}  // namespace

SystemBundle::SystemBundle(std::shared_ptr<FrameworkCore> framework)
    : BundlePrivate(std::move(framework), 0, Constants::SYSTEM_BUNDLE_LOCATION, systemHeaders()) {}

void SystemBundle::init() {
  const Transition transition(*this);
  initialize();
}

void SystemBundle::initialize() {
  if (acceptsBundles()) return;
  if (core->owner.expired()) {
    throw std::runtime_error(
        "the framework has ended: its last handle was destroyed; create another");
  }
  if (state == Bundle::STATE_STOPPING) {
    throw std::runtime_error("the framework is still stopping: wait until it has stopped");
  }
  openContext();
  enter(Bundle::STATE_STARTING);
}

void SystemBundle::start() {
  if (!activate()) return;
  // After the transition, so that a listener can stop the framework.
  core->listeners.send(FrameworkEvent(FrameworkEvent::FRAMEWORK_STARTED, bundle(), ""));
}

// Says whether the framework was not active before.
bool SystemBundle::activate() {
  const Transition transition(*this);
  initialize();
  if (state == Bundle::STATE_ACTIVE) return false;
  enter(Bundle::STATE_ACTIVE);
  return true;
}

void SystemBundle::stop() {
  if (state == Bundle::STATE_STOPPING) return;
  const Transition transition(*this);
  stopInTransition();
}

void SystemBundle::abandon() noexcept {
  const Transition transition(*this, std::nothrow);
  if (transition) stopInTransition();
}

void SystemBundle::stopInTransition() {
  if (!acceptsBundles()) return;
  pendingStops = 1;
  enter(Bundle::STATE_STOPPING, BundleEvent::BUNDLE_STOPPING);
  stopBundles();
  endOneStop();
}

void SystemBundle::endOneStop() noexcept {
  if (--pendingStops > 0) return;
  // The remaining listeners are the host's, which is not told that its own services go.
  core->listeners.removeAllOf(*this);
  closeContext();
  endStop();
}

void SystemBundle::endStop() noexcept {
  const std::lock_guard lock(mutex);
  state = Bundle::STATE_RESOLVED;
  ++stopCount;
  changed.notify_all();
}

void SystemBundle::uninstall() {
  throw std::runtime_error("a framework cannot be uninstalled");
}

void SystemBundle::stopBundles() noexcept {
  long last = std::numeric_limits<long>::max();
  while (const auto bundle = core->findLast(last)) {
    last = bundle->id - 1;
    ++pendingStops;
    bundle->abandon();
  }
}

bool SystemBundle::acceptsBundles() const {
  return state == Bundle::STATE_STARTING || state == Bundle::STATE_ACTIVE;
}

bool SystemBundle::isRunning() const {
  return acceptsBundles() || state == Bundle::STATE_STOPPING;
}

bool SystemBundle::waitsForThisThread() {
  if (isInTransitionOfThisThread()) return true;
  const auto bundles = core->libraryBundles();
  return std::any_of(bundles.begin(), bundles.end(),
                     [](const auto& bundle) { return bundle->isInTransitionOfThisThread(); });
}

FrameworkEvent SystemBundle::waitForStop(const std::chrono::milliseconds& timeout) {
  if (timeout == std::chrono::milliseconds::zero() && isRunning() && waitsForThisThread()) {
    return FrameworkEvent(FrameworkEvent::FRAMEWORK_ERROR, bundle(),
                          "the framework cannot stop before this thread has ended the start or "
                          "stop of a bundle that it is in");
  }
  std::unique_lock lock(mutex);
  // It may have been started again before this thread sees that it stopped.
  const auto isOver = [this, before = stopCount] { return !isRunning() || stopCount != before; };
  constexpr auto kNoTime = std::chrono::milliseconds::zero();
  if (timeout == kNoTime) {
    changed.wait(lock, isOver);
  } else if (!changed.wait_for(lock, std::clamp(timeout, kNoTime, kLongestWait), isOver)) {
    return FrameworkEvent(FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT, bundle(), "");
  }
  const auto type =
      stopCount > 0 ? FrameworkEvent::FRAMEWORK_STOPPED : FrameworkEvent::FRAMEWORK_ERROR;
  return FrameworkEvent(type, bundle(), "");
}

}  // namespace cppmicroservices::detail
