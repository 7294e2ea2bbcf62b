#pragma once

#include <ctime>

namespace bench {

/// Returns the processor time of the process, which excludes the time of other programs.
inline double processorSeconds() noexcept {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace bench
