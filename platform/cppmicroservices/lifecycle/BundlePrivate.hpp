#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "cppmicroservices/AnyMap.h"
#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/BundleEvent.h"

namespace cppmicroservices {

/// The handle that the library of a bundle keeps.
class BundleContextPrivate {
 public:
  explicit BundleContextPrivate(detail::BundlePrivate& ofBundle) : bundle(ofBundle) {}
  detail::BundlePrivate& bundle;
};

namespace detail {

class FrameworkCore;

/// Throws the exception that tells that a context is no longer valid.
[[noreturn]] void throwInvalidContext();

/// What a bundle is: a number, a name, a manifest, a state. How it starts and stops is up to the
/// derived classes.
class BundlePrivate : public std::enable_shared_from_this<BundlePrivate> {
 public:
  BundlePrivate(std::shared_ptr<FrameworkCore> framework, long number, std::string file,
                AnyMap manifest);
  virtual ~BundlePrivate();

  virtual void start() = 0;
  virtual void stop() = 0;
  virtual void uninstall() = 0;

  static BundlePrivate& of(const BundleContext& context) { return context.valid(); }

  Bundle bundle();

  /// Returns the context of the present start, an invalid one when there is none. `self` is this
  /// bundle: a copy costs less than `shared_from_this`.
  BundleContext context(const std::shared_ptr<BundlePrivate>& self) const;

  /// Says whether the context that was made in `ofContext` is valid.
  bool isCurrent(std::uint64_t ofContext) const {
    return (ofContext & 1) != 0 && generation.load(std::memory_order_acquire) == ofContext;
  }

  /// Throws `std::logic_error` when the bundle was uninstalled.
  void requireInstalled() const;

  /// Throws `IllegalStateException` when the bundle is at the end of its stop, where it must not
  /// get anything more.
  void requireOpen() const;

  // The cycle with the framework is cut when the last outside object of the framework goes.
  const std::shared_ptr<FrameworkCore> core;
  const long id;
  const std::string location;
  const AnyMap headers;
  const std::string symbolicName;
  std::atomic<Bundle::State> state = Bundle::STATE_INSTALLED;

 protected:
  /// Lets one thread at a time start, stop or uninstall the bundle.
  class Transition {
   public:
    /// Waits for another thread. Throws `std::logic_error` when this thread has one already,
    /// `std::runtime_error` after `kPatience`.
    explicit Transition(BundlePrivate& ofBundle);
    ~Transition();
    Transition(const Transition&) = delete;
    Transition& operator=(const Transition&) = delete;

   private:
    BundlePrivate& target;
  };

  void enter(Bundle::State newState);
  void enter(Bundle::State newState, BundleEvent::Type event);

  /// Makes the context valid.
  void openContext();

  /// Takes back what the bundle registered, holds and listens to, and makes its context invalid.
  void closeContext();

  BundleContextPrivate handle{*this};
  std::mutex mutex;
  std::condition_variable changed;

 private:
  std::thread::id transitionThread;
  std::atomic<bool> closing = false;
  // Odd while the context is valid; a context is valid in the generation it was made in.
  std::atomic<std::uint64_t> generation = 0;
};

}  // namespace detail
}  // namespace cppmicroservices
