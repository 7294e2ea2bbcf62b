#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "oracle/support/Random.hpp"
#include "oracle/support/World.hpp"
#include "quenlith/build/markup/Snippet.hpp"

namespace quenlith::oracle {

using build::markup::Snippet;
using build::markup::SnippetType;

/// The top-level nodes that a host adds of its own.
enum class HostNode {
  kLine,
  kLineWithTask,
  kTextWithTask,
  kHeader,
  kHeaderWithoutChild,
  kHeaderWithTaskSecond,
  kCount
};

/// One thing that the host does.
struct TaskStep {
  enum class Kind { kParse, kCanParse, kReset, kAddNode, kChangeHeader, kNewDocument, kAppendix };

  Kind kind = Kind::kParse;
  /// Of kParse and kCanParse.
  Snippet snippet;
  /// The type of the last result is handed back in place of the snippet's.
  bool handBack = false;
  HostNode node = HostNode::kLine;
  /// Of kChangeHeader: which of the top-level nodes with a task, and what its view becomes.
  std::size_t header = 0;
  ustring view;
  std::vector<Marker> appendix;
};

using TaskSteps = std::vector<TaskStep>;

/// Returns what a host does with a few lines: in order as a host should, or any calls in any
/// order.
TaskSteps randomTaskSteps(Random& random);

/// Returns calls with markers of one task only, which is paired, of low and high kinds.
TaskSteps oneTaskSteps(Random& random);

/// Returns calls that bring to light what the calls before them left in the parser: the count
/// and the index, the id of the open task, the overlapping ids. Which comes first is random.
TaskSteps probeSteps(Random& random);

/// The ways in which the count of an open task can pass 65,535.
enum class LongEnd { kPlainLine, kOtherTask, kClosingKindAbove1, kClosingKind0, kCount };

/// Returns a task of 65,536 lines that ends in the way given, and a few calls behind it.
TaskSteps longTaskSteps(LongEnd end);

std::string showStep(const TaskStep& step);

}  // namespace quenlith::oracle
