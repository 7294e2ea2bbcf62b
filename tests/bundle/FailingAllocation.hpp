#pragma once

#include <cstddef>

/// Lets one allocation of this thread fail while it lives: the one after `countBefore` others.
class FailingAllocation {
 public:
  explicit FailingAllocation(std::size_t countBefore);
  ~FailingAllocation();

  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// Says whether that allocation was asked for.
  bool hasFailed() const;
};
