#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace hostile {

/// What one operation took.
struct Cost {
  /// The basic blocks that were run, and one for every 16 bytes that the C library copied, compared
  /// or searched.
  std::uint64_t work = 0;
  /// The greatest depth of the stack.
  std::size_t stackBytes = 0;
  /// The most bytes that were allocated at any time, beyond those from before.
  std::size_t heapBytes = 0;
};

/// Runs `operation` on a thread whose stack is filled with a pattern before and searched for it
/// afterwards. An operation that needs more than 192 KiB of stack ends the process. Propagates the
/// exceptions of `operation`.
Cost measure(const std::function<void()>& operation);

}  // namespace hostile
