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

/// The top-level nodes that a host adds itself.
enum class HostNode {
  kLine,
  kLineWithTask,
  kTextWithTask,
  kHeader,
  kHeaderWithoutChild,
  kHeaderWithTaskSecond,
  kCount
};

/// One action of the host.
struct TaskStep {
  enum class Kind { kParse, kCanParse, kReset, kAddNode, kChangeHeader, kNewDocument, kAppendix };

  Kind kind = Kind::kParse;
  /// For kParse and kCanParse.
  Snippet snippet;
  /// Whether the type of the last result replaces that of the snippet.
  bool usesLastType = false;
  /// For kParse: whether the host makes the call again when it throws.
  bool isRetried = false;
  HostNode node = HostNode::kLine;
  /// For kChangeHeader: the number of the top-level node with a task, and its new view.
  std::size_t header = 0;
  ustring view;
  /// For kAppendix: the text of each entry.
  std::vector<ustring> appendix;
};

using TaskSteps = std::vector<TaskStep>;

/// Returns the calls for a few lines: in order, as a host should make them, or any calls in any
/// order.
TaskSteps randomTaskSteps(Random& random);

/// Returns an appendix and the lines of a snippet in order, with `canParse` before each. The host
/// repeats a call that throws.
TaskSteps retriedLineSteps(Random& random);

/// Returns calls with the markers of one paired task, with low and high kinds.
TaskSteps oneTaskSteps(Random& random);

/// Returns calls that show the state that earlier calls left in the parser: the count and the
/// index, the id of the open task, the overlapping ids. Which one comes first is random.
TaskSteps probeSteps(Random& random);

/// The ways in which the count of an open task can pass 65,535.
enum class LongEnd { kPlainLine, kOtherTask, kClosingKindAbove1, kClosingKind0, kCount };

/// Returns a task of 65,536 lines that ends with `end`, and a few calls after it.
TaskSteps longTaskSteps(LongEnd end);

std::string showStep(const TaskStep& step);

}  // namespace quenlith::oracle
