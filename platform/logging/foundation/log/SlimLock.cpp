#include "foundation/log/SlimLock.hpp"

#ifndef _WIN32

namespace foundation::log {

void AcquireSRWLockExclusive(SRWLOCK* lock) {
  lock->mutex.lock();
  lock->acquisitions.fetch_add(1, std::memory_order_relaxed);
}

void ReleaseSRWLockExclusive(SRWLOCK* lock) noexcept {
  lock->mutex.unlock();
}

}  // namespace foundation::log

#endif
