#pragma once

#include <cstddef>
#include <limits>
#include <new>

namespace quenlith::test {

/// Returns how many times this thread has allocated.
std::size_t allocationCount();

/// Returns how many allocations of this thread have not been released. Valid only if no thread
/// releases what another one allocated.
std::ptrdiff_t liveAllocations();

/// While it lives, the allocations of this thread fail, except for the next `first` ones and those
/// after the next `first + count`.
class FailingAllocations {
 public:
  explicit FailingAllocations(std::size_t first,
                              std::size_t count = std::numeric_limits<std::size_t>::max());
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

/// Runs `operation` repeatedly, with its allocations failing from the first, the second, ... one
/// on, until it succeeds; calls `check` after each failure. Returns the number of failures.
/// Propagates exceptions of `operation` other than std::bad_alloc.
template <typename Operation, typename Check>
std::size_t failEachAllocation(Operation operation, Check check) {
  for (std::size_t first = 0;; ++first) {
    try {
      const FailingAllocations failing(first);
      operation();
      return first;
    } catch (const std::bad_alloc&) {
    }
    check();
  }
}

}  // namespace quenlith::test
