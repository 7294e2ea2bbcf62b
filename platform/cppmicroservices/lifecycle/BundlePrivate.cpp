#include "lifecycle/BundlePrivate.hpp"

#include <chrono>
#include <stdexcept>

#include "cppmicroservices/Constants.h"
#include "cppmicroservices/IllegalStateException.h"
#include "lifecycle/FrameworkCore.hpp"

namespace cppmicroservices::detail {

namespace {

// How long a start or stop waits for one in another thread: two bundles that start each other in
// two threads would wait for ever.
constexpr std::chrono::seconds kTransitionTimeout{5};

}  // namespace

void throwInvalidContext() {
  throw IllegalStateException("The bundle context is no longer valid");
}

BundlePrivate::BundlePrivate(std::shared_ptr<FrameworkCore> core, long id, std::string location,
                             AnyMap headers)
    : core(std::move(core)),
      id(id),
      location(std::move(location)),
      headers(std::move(headers)),
      symbolicName(ref_any_cast<std::string>(this->headers.at(Constants::BUNDLE_SYMBOLICNAME))) {}

BundlePrivate::~BundlePrivate() = default;

Bundle BundlePrivate::bundle() {
  return Bundle(shared_from_this(), core->owner.lock());
}

void BundlePrivate::requireInstalled() const {
  if (state == Bundle::STATE_UNINSTALLED) {
    throw std::logic_error(location + ": the bundle " + symbolicName + " was uninstalled");
  }
}

void BundlePrivate::requireOpen() const {
  if (closing) throwInvalidContext();
}

BundlePrivate::Transition::Transition(BundlePrivate& target) : target(target) {
  const std::thread::id self = std::this_thread::get_id();
  std::unique_lock lock(target.mutex);
  if (target.transitionThread == self) {
    throw std::logic_error("the bundle " + target.symbolicName +
                           " is starting or stopping in this thread: it cannot change its state");
  }
  const auto isFree = [&target] { return target.transitionThread == std::thread::id(); };
  if (!target.changed.wait_for(lock, kTransitionTimeout, isFree)) {
    throw std::runtime_error("the bundle " + target.symbolicName +
                             " is still starting or stopping in another thread");
  }
  target.transitionThread = self;
}

BundlePrivate::Transition::~Transition() {
  const std::lock_guard lock(target.mutex);
  target.transitionThread = std::thread::id();
  target.changed.notify_all();
}

void BundlePrivate::enter(Bundle::State newState) {
  const std::lock_guard lock(mutex);
  state = newState;
  changed.notify_all();
}

void BundlePrivate::enter(Bundle::State newState, BundleEvent::Type event) {
  enter(newState);
  core->listeners.send(BundleEvent(event, bundle()));
}

void BundlePrivate::openContext() {
  closing = false;
  generation.fetch_add(1, std::memory_order_acq_rel);
}

void BundlePrivate::closeContext() {
  closing = true;
  for (const auto& service : core->services.all()) {
    if (service->bundle.get() == this) service->unregister();
  }
  for (const auto& service : core->services.all()) service->releaseFrom(*this);
  core->listeners.removeAllOf(*this);
  generation.fetch_add(1, std::memory_order_acq_rel);
}

}  // namespace cppmicroservices::detail
