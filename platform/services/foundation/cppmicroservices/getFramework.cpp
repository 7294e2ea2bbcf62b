#include "foundation/cppmicroservices/getFramework.hpp"

#include <mutex>

namespace foundation::cppmicroservices {
namespace {

// A plain lock: what the atomic shared pointer of this standard library does is a lock too,
// and the thread sanitizer does not know that one.
std::mutex lock;

std::shared_ptr<::cppmicroservices::Framework>& runningFramework() {
  // Never destroyed: components may ask while the process ends, and a framework left running
  // is not stopped from a destructor of static data.
  static auto& framework = *new std::shared_ptr<::cppmicroservices::Framework>;
  return framework;
}

}  // namespace

std::shared_ptr<::cppmicroservices::Framework> getFramework() noexcept {
  const std::lock_guard guard(lock);
  return runningFramework();
}

void setFramework(std::shared_ptr<::cppmicroservices::Framework> framework) noexcept {
  // The parameter takes the old framework out of the lock's scope: its end may ask for the
  // running one.
  const std::lock_guard guard(lock);
  runningFramework().swap(framework);
}

}  // namespace foundation::cppmicroservices
