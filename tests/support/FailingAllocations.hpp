#pragma once

#include <cstddef>
#include <limits>
#include <new>

namespace quenlith::test {

/// How many times this thread has allocated so far.
std::size_t allocationCount();

/// How many of the allocations of this thread have not been released, when what one thread
/// allocates no other releases.
std::ptrdiff_t liveAllocations();

/// While it lives, the allocation of this thread with the number `first` from now on fails, and so
/// do those after it; the first one has number 0.
class FailingAllocations {
 public:
  explicit FailingAllocations(std::size_t first);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

/// Runs `operation` again and again, with its first, second, ... allocation failing, until it gets
/// through; calls `check` after each failure. Returns how many allocations failed. Throws what
/// `operation` throws but std::bad_alloc.
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
