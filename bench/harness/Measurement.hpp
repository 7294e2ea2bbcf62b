#pragma once

#include <cstddef>
#include <limits>
#include <string>

#include "harness/Allocations.hpp"

namespace bench {

/// The cost of one subject on one corpus. Times are processor times, the best of all rounds.
struct Measurement {
  std::string name;
  std::size_t lines = 0;
  std::size_t utf8Bytes = 0;
  double buildSeconds = std::numeric_limits<double>::infinity();
  double destroySeconds = std::numeric_limits<double>::infinity();
  std::size_t liveBytes = 0;
  AllocationCount allocated;

  double nanosecondsALine() const noexcept { return aLine(buildSeconds * 1e9); }
  double destroyNanosecondsALine() const noexcept { return aLine(destroySeconds * 1e9); }
  double megabytesASecond() const noexcept {
    return static_cast<double>(utf8Bytes) / 1e6 / buildSeconds;
  }
  double liveBytesALine() const noexcept { return aLine(static_cast<double>(liveBytes)); }
  double peakBytesALine() const noexcept { return aLine(static_cast<double>(allocated.peakBytes)); }
  double allocationsALine() const noexcept {
    return aLine(static_cast<double>(allocated.allocations));
  }

 private:
  double aLine(double whole) const noexcept { return whole / static_cast<double>(lines); }
};

}  // namespace bench
