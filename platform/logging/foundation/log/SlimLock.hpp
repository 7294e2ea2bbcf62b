#pragma once

#ifdef _WIN32
#include <windows.h>
#else

#include <atomic>
#include <cstdint>
#include <mutex>

#include "quenlith/export/logging.hpp"

namespace foundation::log {

/// A lock with the names of the slim reader/writer lock of Windows, for systems without it.
struct SRWLOCK {
  std::mutex mutex;
  /// How often the lock was taken since it was made; wraps.
  std::atomic<std::uint64_t> acquisitions{0};
};

/// Takes `lock` for the calling thread alone; waits for it. Not recursive.
QUENLITH_LOGGING_EXPORT void AcquireSRWLockExclusive(SRWLOCK* lock);

/// Gives `lock` back. The calling thread must hold it.
QUENLITH_LOGGING_EXPORT void ReleaseSRWLockExclusive(SRWLOCK* lock) noexcept;

}  // namespace foundation::log

#endif
