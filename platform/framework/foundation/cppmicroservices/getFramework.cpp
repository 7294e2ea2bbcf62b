#include "foundation/cppmicroservices/getFramework.hpp"

#include <atomic>
#include <mutex>
#include <thread>
#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace foundation::cppmicroservices {
namespace {

/// Tells whether the process has had one thread only so far, as a shared pointer asks too.
bool isOnlyThread() noexcept {
#if __has_include(<sys/single_threaded.h>)
  return __libc_single_threaded != 0;
#else
  return false;
#endif
}

/// Held for a few instructions at a time, and on every line that is parsed: an atomic exchange
/// waits for all that was written before it, which costs more than the rest of the lookup.
class SpinLock {
 public:
  void lock() noexcept {
    if (isOnlyThread()) return;
    while (held.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  void unlock() noexcept { held.clear(std::memory_order_release); }

 private:
  std::atomic_flag held;
};

// What the atomic shared pointer of this standard library does is a lock too, and the thread
// sanitizer does not know that one.
constinit SpinLock frameworkLock;

constinit std::atomic<std::uint64_t> changes = 0;

std::shared_ptr<::cppmicroservices::Framework>& runningFramework() {
  // Never destroyed: components may ask while the process ends, and a framework left running
  // is not stopped from a destructor of static data.
  static auto& framework = *new std::shared_ptr<::cppmicroservices::Framework>;
  return framework;
}

}  // namespace

std::shared_ptr<::cppmicroservices::Framework> getFramework() noexcept {
  const std::lock_guard guard(frameworkLock);
  return runningFramework();
}

void setFramework(std::shared_ptr<::cppmicroservices::Framework> framework) noexcept {
  // The parameter takes the old framework out of the lock's scope: its end may ask for the
  // running one.
  const std::lock_guard guard(frameworkLock);
  runningFramework().swap(framework);
  changes.fetch_add(1, std::memory_order_release);
}

std::uint64_t frameworkChanges() noexcept {
  return changes.load(std::memory_order_acquire);
}

}  // namespace foundation::cppmicroservices
