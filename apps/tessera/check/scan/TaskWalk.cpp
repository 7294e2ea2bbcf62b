#include "tessera/check/scan/TaskWalk.hpp"

#include <algorithm>

#include "quenlith/syntax/Marker.hpp"

namespace tessera::check::scan {
namespace {

// The parser counts the lines of a task in 16 bits.
constexpr std::uint64_t kCountedLines = 65536;

bool isSeen(const FoundMarker& marker) {
  return marker.isTask() && !marker.isEscapedTask;
}

/// Returns whether there are at least two markers and all of them are equal.
bool isOneMarkerRepeated(const std::vector<const FoundMarker*>& markers) {
  using quenlith::syntax::Marker;
  if (markers.size() < 2) return false;
  const Marker first{std::u16string(markers.front()->text())};
  return std::ranges::all_of(markers, [&first](const FoundMarker* marker) {
    return Marker(std::u16string(marker->text())) == first;
  });
}

}  // namespace

TaskWalk::TaskWalk(const FileScan& scan) {
  for (const FoundMarker& found : scan.code) {
    if (isSeen(found)) byId[found.id].push_back(&found);
  }
  const auto& code = scan.code;
  for (auto found = code.begin(); found != code.end();) {
    const auto lineEnd = std::find_if(
        found, code.end(), [found](const FoundMarker& other) { return other.line != found->line; });
    Line markers;
    for (auto marker = found; marker != lineEnd; ++marker) {
      if (isSeen(*marker)) markers.push_back(&*marker);
    }
    if (!markers.empty()) {
      takeLine(markers,
               *std::find_if(found, lineEnd, [](const FoundMarker& m) { return m.isMarker(); }));
    }
    found = lineEnd;
  }
}

void TaskWalk::takeLine(const Line& markers, const FoundMarker& firstOfLine) {
  endOverlongTask(markers.front()->line);
  const bool wasIdle = openTask == 0;
  if (wasIdle) {
    takeIdle(markers, firstOfLine);
  } else {
    takeOpen(*markers.front());
  }
  const bool isWholeTask =
      wasIdle && openTask == 0 && !tasks.empty() && tasks.back().open == markers.front();
  if (isWholeTask) return;
  for (std::size_t i = 1; i < markers.size(); ++i) ignored.push_back({markers[i], markers[0]});
}

/// At the line on which the count of the open task wraps to 0, the parser takes the task for
/// closed.
void TaskWalk::endOverlongTask(std::uint64_t line) {
  if (openTask == 0) return;
  Task& task = tasks[openTask - 1];
  if (line < task.open->line + kCountedLines - 1) return;
  const auto& markers = byId[task.open->id];
  task.overlongEnd = markers.back()->line;
  if (line >= task.open->line + kCountedLines) openTask = 0;
}

void TaskWalk::takeOpen(const FoundMarker& first) {
  Task& task = tasks[openTask - 1];
  if (first.id == task.open->id) {
    task.close = &first;
    openTask = 0;
  } else {
    overlaps.push_back({&first, task.open});
    overlappingIds.insert(first.id);
  }
}

void TaskWalk::takeIdle(const Line& markers, const FoundMarker& firstOfLine) {
  const FoundMarker& first = *markers.front();
  if (byId[first.id].size() != 2 || overlappingIds.contains(first.id)) return;
  Task& task = tasks.emplace_back();
  task.open = &first;
  if (isOneMarkerRepeated(markers)) {
    task.close = markers.back();
    task.dropsLine = firstOfLine.parts.position == 0;
  } else {
    openTask = tasks.size();
  }
}

}  // namespace tessera::check::scan
