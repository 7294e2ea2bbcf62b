#pragma once

#ifdef _WIN32
#include <windows.h>
#else

#include <atomic>
#include <cstdint>
#include <mutex>

#include "quenlith/export/logging.hpp"

namespace foundation::log {

/// An exclusive lock with the interface of the slim reader/writer lock of Windows, for other
/// systems.
struct SRWLOCK {
  std::mutex mutex;
  /// The number of acquisitions so far; wraps around.
  std::atomic<std::uint64_t> acquisitions{0};
};

/// Acquires `lock` exclusively for the calling thread; blocks until it is free. Not recursive.
QUENLITH_LOGGING_EXPORT void AcquireSRWLockExclusive(SRWLOCK* lock);

/// Releases `lock`, which the calling thread must hold.
QUENLITH_LOGGING_EXPORT void ReleaseSRWLockExclusive(SRWLOCK* lock) noexcept;

}  // namespace foundation::log

#endif
