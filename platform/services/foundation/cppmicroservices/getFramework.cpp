#include "foundation/cppmicroservices/getFramework.hpp"

#include <atomic>
#include <mutex>
#include <thread>

namespace foundation::cppmicroservices {
namespace {

/// Held for a few instructions at a time, and on every line that is parsed.
class SpinLock {
 public:
  void lock() noexcept {
    while (held.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  void unlock() noexcept { held.clear(std::memory_order_release); }

 private:
  std::atomic_flag held;
};

// What the atomic shared pointer of this standard library does is a lock too, and the thread
// sanitizer does not know that one.
constinit SpinLock frameworkLock;

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
}

}  // namespace foundation::cppmicroservices
