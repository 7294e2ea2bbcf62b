#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <thread>

#include "cppmicroservices/AnyMap.h"
#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/BundleEvent.h"
#include "cppmicroservices/BundleVersion.h"
#include "registry/ServiceClient.hpp"

namespace cppmicroservices::detail {

class FrameworkCore;

/// Throws the exception for a context that is no longer valid.
[[noreturn]] void throwInvalidContext();

/// The id, manifest, state and context of a bundle. The derived classes define how it starts and
/// stops.
class BundlePrivate : public ServiceClient, public std::enable_shared_from_this<BundlePrivate> {
 public:
  BundlePrivate(std::shared_ptr<FrameworkCore> core, long id, std::string location, AnyMap headers);
  ~BundlePrivate() override;

  virtual void start() = 0;
  virtual void stop() = 0;
  virtual void uninstall() = 0;

  /// Stops the bundle for good, since its framework ends. When the bundle is starting or stopping
  /// in this thread, or after 5 seconds still in another one, it is stopped at the end of that.
  virtual void abandon() noexcept = 0;

  static BundlePrivate& of(const BundleContext& context) { return context.valid(); }
  static std::uint64_t generationOf(const BundleContext& context) { return context.generation; }

  Bundle bundle() override;

  /// Returns the context of the current start, an invalid one when there is none. `self` is this
  /// bundle: copying it costs less than `shared_from_this`.
  BundleContext context(const std::shared_ptr<BundlePrivate>& self) const {
    const std::uint64_t current = generation.load(std::memory_order_acquire);
    return (current & 1) != 0 ? BundleContext(self, current) : BundleContext();
  }

  /// Says whether a context that was made in the generation `contextGeneration` is valid.
  bool isCurrent(std::uint64_t contextGeneration) const {
    return (contextGeneration & 1) != 0 &&
           generation.load(std::memory_order_acquire) == contextGeneration;
  }

  /// Throws `std::logic_error` when the bundle was uninstalled.
  void requireInstalled() const;

  void requireOpen(std::uint64_t contextGeneration) const override;

  /// Says whether this thread is starting, stopping or uninstalling the bundle.
  bool isInTransitionOfThisThread();

  // A reference cycle: `FrameworkOwner` breaks it when the last handle of the framework is gone.
  const std::shared_ptr<FrameworkCore> core;
  const long id;
  const std::string location;
  const AnyMap headers;
  const std::string symbolicName;
  const BundleVersion version;
  std::atomic<Bundle::State> state = Bundle::STATE_INSTALLED;

 protected:
  /// Lets one thread at a time start, stop or uninstall the bundle.
  class Transition {
   public:
    /// Waits for another thread. Throws `std::logic_error` when this thread is in a transition of
    /// the bundle already, `std::runtime_error` after 5 seconds.
    explicit Transition(BundlePrivate& target);

    /// Like the form above, but where that one throws, the transition that is under way calls
    /// `abandon` at its end, and this object is not a transition.
    Transition(BundlePrivate& target, std::nothrow_t) noexcept;

    ~Transition();
    Transition(const Transition&) = delete;
    Transition& operator=(const Transition&) = delete;

    explicit operator bool() const { return turn == Turn::kOurs; }

   private:
    enum class Turn { kOurs, kOfThisThread, kOfAnotherThread };
    Turn take(std::unique_lock<std::mutex>& lock);

    BundlePrivate& target;
    Turn turn = Turn::kOurs;
  };

  void enter(Bundle::State newState);
  void enter(Bundle::State newState, BundleEvent::Type event);

  /// Makes the context valid.
  void openContext();

  /// Unregisters the bundle's services, releases those that it uses, removes its listeners, and
  /// makes its context invalid.
  void closeContext() noexcept;

  std::mutex mutex;
  std::condition_variable changed;

 private:
  std::thread::id transitionThread;
  bool isAbandonedAfterTransition = false;
  std::atomic<bool> closing = false;
  // Odd while the bundle has a valid context, which is valid for that one generation: a context
  // from before a restart stays invalid.
  std::atomic<std::uint64_t> generation = 0;
};

}  // namespace cppmicroservices::detail
