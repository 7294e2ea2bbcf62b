#pragma once

#include <cstddef>

namespace bench {

/// What the allocator was asked for while counting was on, with its own overhead of a chunk.
struct AllocationCount {
  std::size_t allocations = 0;
  /// Bytes held at most at one time; blocks from before the start do not count.
  std::size_t peakBytes = 0;
};

/// Counts every call of malloc and its like from here on, in all libraries.
void startCounting() noexcept;
AllocationCount stopCounting() noexcept;

/// Bytes that the allocator itself counts as handed out.
std::size_t liveBytes() noexcept;

/// Lets the process keep the memory that it once had, so that the time of the kernel's page
/// faults is in no figure, for any subject.
void keepMemory() noexcept;

}  // namespace bench
