#include "lifecycle/BundlePrivate.hpp"

#include <chrono>
#include <stdexcept>
#include <utility>

#include "cppmicroservices/Constants.h"
#include "cppmicroservices/IllegalStateException.h"
#include "lifecycle/FrameworkCore.hpp"

namespace cppmicroservices::detail {

namespace {

// How long a start or stop waits for one in another thread: two bundles that start each other in
// two threads would wait for ever.
constexpr std::chrono::seconds kTransitionTimeout{5};

BundleVersion versionOf(const AnyMap& headers) {
  const auto entry = headers.find(Constants::BUNDLE_VERSION);
  return entry == headers.end() ? BundleVersion::EmptyVersion()
                                : BundleVersion(ref_any_cast<std::string>(entry->second));
}

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
      symbolicName(ref_any_cast<std::string>(this->headers.at(Constants::BUNDLE_SYMBOLICNAME))),
      version(versionOf(this->headers)) {}

BundlePrivate::~BundlePrivate() = default;

Bundle BundlePrivate::bundle() {
  return Bundle(shared_from_this(), core->owner.lock());
}

void BundlePrivate::requireInstalled() const {
  if (state == Bundle::STATE_UNINSTALLED) {
    throw std::logic_error(location + ": the bundle " + symbolicName + " was uninstalled");
  }
}

void BundlePrivate::requireOpen(std::uint64_t contextGeneration) const {
  if (closing || !isCurrent(contextGeneration)) throwInvalidContext();
}

BundlePrivate::Transition::Transition(BundlePrivate& target) : target(target) {
  std::unique_lock lock(target.mutex);
  turn = take(lock);
  if (turn == Turn::kOurs) return;
  if (turn == Turn::kOfThisThread) {
    throw std::logic_error("the bundle " + target.symbolicName +
                           " is starting or stopping in this thread: it cannot change its state");
  }
  throw std::runtime_error("the bundle " + target.symbolicName +
                           " is still starting or stopping in another thread");
}

BundlePrivate::Transition::Transition(BundlePrivate& target, std::nothrow_t) noexcept
    : target(target) {
  std::unique_lock lock(target.mutex);
  turn = take(lock);
  if (turn != Turn::kOurs) target.isAbandonedAfterTransition = true;
}

BundlePrivate::Transition::Turn BundlePrivate::Transition::take(
    std::unique_lock<std::mutex>& lock) {
  const std::thread::id self = std::this_thread::get_id();
  if (target.transitionThread == self) return Turn::kOfThisThread;
  const auto isFree = [this] { return target.transitionThread == std::thread::id(); };
  if (!target.changed.wait_for(lock, kTransitionTimeout, isFree)) return Turn::kOfAnotherThread;
  target.transitionThread = self;
  return Turn::kOurs;
}

BundlePrivate::Transition::~Transition() {
  if (turn != Turn::kOurs) return;
  std::unique_lock lock(target.mutex);
  target.transitionThread = std::thread::id();
  target.changed.notify_all();
  const bool isAbandoned = std::exchange(target.isAbandonedAfterTransition, false);
  lock.unlock();
  if (isAbandoned) target.abandon();
}

bool BundlePrivate::isInTransitionOfThisThread() {
  const std::lock_guard lock(mutex);
  return transitionThread == std::this_thread::get_id();
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

void BundlePrivate::closeContext() noexcept {
  closing = true;
  while (const auto service = core->services.firstOf(*this)) {
    service->unregister();
    // Another thread may be about to do this.
    core->services.remove(*service);
  }
  while (const auto service = uses.first()) service->releaseFrom(*this);
  core->listeners.removeAllOf(*this);
  generation.fetch_add(1, std::memory_order_acq_rel);
}

}  // namespace cppmicroservices::detail
