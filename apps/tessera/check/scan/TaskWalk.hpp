#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "tessera/check/scan/FileScan.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::check::scan {

/// A task that a marker begins.
struct Task {
  const FoundMarker* open = nullptr;
  /// Null if the task never ends.
  const FoundMarker* close = nullptr;
  /// The line of the last marker of a task of 65,536 lines or more; 0 for any other.
  std::uint64_t overlongEnd = 0;
  /// Both markers are at the start of one line, which the parser then leaves out of the document.
  bool dropsLine = false;
};

/// A task marker inside a task with another id, and that task.
struct Overlap {
  const FoundMarker* marker = nullptr;
  const FoundMarker* open = nullptr;
};

/// A task marker that the parser does not look at, and the first one of its line.
struct IgnoredTaskMarker {
  const FoundMarker* marker = nullptr;
  const FoundMarker* first = nullptr;
};

/// Follows the tasks of a file as the task parser does. Borrows the scan. Linear.
class TaskWalk {
 public:
  explicit TaskWalk(const FileScan& scan);

  /// In the order of their first markers.
  std::vector<Task> tasks;
  std::vector<Overlap> overlaps;
  std::vector<IgnoredTaskMarker> ignored;

  /// The task markers of each id, in order.
  using ById = hashing::KeyedMap<std::u16string_view, std::vector<const FoundMarker*>>;
  ById byId;

 private:
  using Line = std::vector<const FoundMarker*>;

  void takeLine(const Line& markers, const FoundMarker& firstOfLine);
  void endOverlongTask(std::uint64_t line);
  void takeOpen(const FoundMarker& first);
  void takeIdle(const Line& markers, const FoundMarker& firstOfLine);

  // The index of the open task plus 1; 0 when none is open.
  std::size_t openTask = 0;
  hashing::KeyedSet<std::u16string_view> overlappingIds;
};

}  // namespace tessera::check::scan
