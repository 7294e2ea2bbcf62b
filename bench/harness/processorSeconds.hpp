#pragma once

#include <ctime>

namespace bench {

/// Time that the process has had a processor for: what other programs take from it does not
/// count.
inline double processorSeconds() noexcept {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace bench
