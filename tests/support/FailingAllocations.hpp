#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <new>
#include <stdexcept>

namespace quenlith::test {

/// Returns how many times this thread has allocated.
std::size_t allocationCount();

/// Returns how many allocations of this thread have not been released. Valid only if no thread
/// releases what another one allocated.
std::ptrdiff_t liveAllocations();

/// While it lives, the allocations of this thread fail, except for the next `first` ones and those
/// after the next `first + count`. One that reports a failure by returning null may be one that is
/// not needed: it does not fail if `count` is 1. A program prints at its end how many failed.
class FailingAllocations {
 public:
  explicit FailingAllocations(std::size_t first,
                              std::size_t count = std::numeric_limits<std::size_t>::max());
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  /// Returns whether one has failed.
  bool hasFailed() const;
};

/// While it lives, this thread calls `action` in the allocation after the next `number` ones. What
/// it calls and waits for must not need a lock that the thread has then.
class AllocationHook {
 public:
  AllocationHook(std::size_t number, std::function<void()> action);
  ~AllocationHook();
  AllocationHook(const AllocationHook&) = delete;
  AllocationHook& operator=(const AllocationHook&) = delete;

  /// Returns whether it has called `action`.
  bool hasCalled() const;
};

/// Runs `operation` repeatedly: its first allocation fails, then all from the first one on, then
/// the second one, ... until it succeeds; calls `check` after each failure. Returns how many
/// allocations it makes. Propagates exceptions of `operation` other than std::bad_alloc; throws
/// std::logic_error if it succeeds although an allocation has failed.
template <typename Operation, typename Check>
std::size_t failEachAllocation(Operation operation, Check check) {
  constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();
  for (std::size_t first = 0;; ++first) {
    for (const std::size_t count : {std::size_t{1}, kAll}) {
      try {
        const FailingAllocations failing(first, count);
        operation();
        if (!failing.hasFailed()) return first;
      } catch (const std::bad_alloc&) {
        check();
        continue;
      }
      throw std::logic_error("an operation hides that an allocation has failed");
    }
  }
}

}  // namespace quenlith::test
