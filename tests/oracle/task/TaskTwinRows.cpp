#include <algorithm>

#include "oracle/task/TaskTwin.hpp"

// What the twin counts. Its decisions do not depend on this.

namespace quenlith::oracle {

namespace {

struct LineShape {
  bool twoOrMore = false;
  bool threeOrMore = false;
  bool equal = false;
  bool atStart = false;
};

LineShape shapeOf(const std::vector<TwinMarker>& markers) {
  std::vector<PlainMarker> tasks;
  for (const TwinMarker& marker : markers) {
    if (marker.element == u"task") tasks.push_back(marker);
  }
  LineShape shape;
  shape.twoOrMore = tasks.size() > 1;
  shape.threeOrMore = tasks.size() > 2;
  shape.equal = std::all_of(tasks.begin(), tasks.end(),
                            [&](const PlainMarker& marker) { return marker == tasks.front(); });
  shape.atStart = !markers.empty() && markers.front().position == 0;
  return shape;
}

// Each group has four cells: one marker, unequal ones, equal ones after text, equal ones at the
// start.
TaskRow cellOf(TaskRow firstOfFour, const LineShape& shape) {
  std::size_t offset = 0;
  if (shape.twoOrMore) offset = !shape.equal ? 1 : (shape.atStart ? 3 : 2);
  return static_cast<TaskRow>(static_cast<std::size_t>(firstOfFour) + offset);
}

TaskRow groupOf(bool paired, bool overlapping) {
  if (paired) return TaskRow::kIdlePairedOne;
  return overlapping ? TaskRow::kIdleOtherIdOne : TaskRow::kIdleSameIdOne;
}

}  // namespace

void TaskTwin::noteIdleRow(const Call& call) {
  if (!call.taskMarker) return;
  const LineShape shape = shapeOf(call.markers);
  rows.push_back(cellOf(groupOf(call.snippet.type.kind <= 1, call.overlapping), shape));
  if (shape.threeOrMore && shape.equal) rows.push_back(TaskRow::kIdleThreeEqual);
}

void TaskTwin::noteOpenRow(const Call& call) {
  const bool wraps = taskLineCount == 0xFFFF;
  if (taskLineCount == 0) {
    rows.push_back(TaskRow::kIdlePlain);
  } else if (!call.taskMarker) {
    rows.push_back(wraps ? TaskRow::kOpenPlainWraps : TaskRow::kOpenPlain);
  } else if (call.snippet.type.kind > 1) {
    rows.push_back(!call.overlapping ? TaskRow::kOpenSameId
                   : wraps           ? TaskRow::kOpenOtherIdWraps
                                     : TaskRow::kOpenOtherId);
  } else if (!call.pairFound) {
    rows.push_back(TaskRow::kOpenUnpaired);
  } else {
    rows.push_back(call.taskMarker->id == currentTaskId ? TaskRow::kOpenPairedSameId
                                                        : TaskRow::kOpenPairedOtherId);
  }
  if (taskLineCount == 0 || !call.taskMarker) return;
  const LineShape shape = shapeOf(call.markers);
  if (shape.atStart) rows.push_back(TaskRow::kOpenMarkerAtStart);
  if (shape.twoOrMore && shape.equal) rows.push_back(TaskRow::kOpenTwoEqual);
}

void TaskTwin::noteClose(const DocumentRecord& document) {
  if (taskNodeIndex >= document.size()) {
    rows.push_back(TaskRow::kCloseWithoutNode);
    return;
  }
  const NodeRecord& node = document[taskNodeIndex];
  if (node.children.empty()) {
    rows.push_back(TaskRow::kCloseOfNodeWithoutChild);
  } else if (node.children.front().kind != NodeKind::kTaskInline) {
    rows.push_back(TaskRow::kCloseOfOtherNode);
  } else {
    if (node.kind != NodeKind::kTaskLine) rows.push_back(TaskRow::kCloseOfNonHeaderWithTask);
    const std::uint16_t before = node.children.front().task.numCodeLines;
    rows.push_back(before == 0 ? TaskRow::kCloseOfHeader : TaskRow::kCloseOfHeaderClosedBefore);
    if (countingWraps) rows.push_back(TaskRow::kCloseWithCountZeroAfterWrap);
  }
}

}  // namespace quenlith::oracle
