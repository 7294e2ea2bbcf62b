#include "lifecycle/BundlePrivate.hpp"

#include <chrono>
#include <stdexcept>

#include "cppmicroservices/Constants.h"
#include "cppmicroservices/IllegalStateException.h"
#include "lifecycle/FrameworkCore.hpp"

namespace cppmicroservices::detail {

namespace {

// How long a start or stop waits for one that another thread is at.
constexpr std::chrono::seconds kPatience{5};

}  // namespace

void throwInvalidContext() {
  throw IllegalStateException("The bundle context is no longer valid");
}

BundlePrivate::BundlePrivate(std::shared_ptr<FrameworkCore> framework, long number,
                             std::string file, AnyMap manifest)
    : core(std::move(framework)),
      id(number),
      location(std::move(file)),
      headers(std::move(manifest)),
      symbolicName(ref_any_cast<std::string>(headers.at(Constants::BUNDLE_SYMBOLICNAME))) {}

BundlePrivate::~BundlePrivate() = default;

Bundle BundlePrivate::bundle() {
  return Bundle(shared_from_this(), core->owner.lock());
}

BundleContext BundlePrivate::context(const std::shared_ptr<BundlePrivate>& self) const {
  const std::uint64_t now = generation.load(std::memory_order_acquire);
  return (now & 1) != 0 ? BundleContext(self, now) : BundleContext();
}

void BundlePrivate::requireInstalled() const {
  if (state == Bundle::STATE_UNINSTALLED) {
    throw std::logic_error(location + ": the bundle " + symbolicName + " was uninstalled");
  }
}

void BundlePrivate::requireOpen() const {
  if (closing) throwInvalidContext();
}

BundlePrivate::Transition::Transition(BundlePrivate& ofBundle) : target(ofBundle) {
  const std::thread::id self = std::this_thread::get_id();
  std::unique_lock lock(target.mutex);
  if (target.transitionThread == self) {
    throw std::logic_error("the bundle " + target.symbolicName +
                           " is starting or stopping in this thread: it cannot change its state");
  }
  const auto isFree = [this] { return target.transitionThread == std::thread::id(); };
  if (!target.changed.wait_for(lock, kPatience, isFree)) {
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
