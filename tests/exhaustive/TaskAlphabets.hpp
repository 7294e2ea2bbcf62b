#pragma once

#include <vector>

#include "quenlith/build/markup/Snippet.hpp"

namespace quenlith::exhaustive {

/// A call of a task parser: `canParse` and `parse` of a snippet, or `reset`.
struct TaskCall {
  bool isReset = false;
  build::markup::Snippet snippet;
};

using TaskCalls = std::vector<TaskCall>;

/// Every line with the kinds 0 to 3, in a block in which the tasks A and B are paired; `reset`.
TaskCalls callsOfAllKinds();

/// The same without the kinds 1 and 2, and with one plain line.
TaskCalls callsOfTwoKinds();

/// Some of the lines in a block in which A is paired, one in which it is not, and one with three
/// markers of A; `reset`.
TaskCalls callsInSeveralBlocks();

/// Every line alone, without a block or a kind; `reset`. The host adds the block and the kind.
TaskCalls callsOfAHost();

}  // namespace quenlith::exhaustive
