#pragma once

#include <cstddef>

namespace bench {

/// The allocations while counting was on, including the allocator's overhead per block.
struct AllocationCount {
  std::size_t allocations = 0;
  /// The largest number of bytes allocated at one time; earlier blocks do not count.
  std::size_t peakBytes = 0;
};

/// Counts every call of malloc and similar functions from now on, in all libraries.
void startCounting() noexcept;
AllocationCount stopCounting() noexcept;

/// Returns the number of bytes in use according to the allocator.
std::size_t liveBytes() noexcept;

/// Makes the process keep freed memory, so that no figure contains the time of page faults.
void keepMemory() noexcept;

}  // namespace bench
