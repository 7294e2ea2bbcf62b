#pragma once

#include <cstddef>

/// Makes one allocation of this thread fail while this object lives: the one after `countBefore`
/// others.
class FailingAllocation {
 public:
  explicit FailingAllocation(std::size_t countBefore);
  ~FailingAllocation();

  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// Returns whether that allocation was requested.
  bool hasFailed() const;
};
