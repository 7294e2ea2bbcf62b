#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "oracle/line/LineTwin.hpp"
#include "oracle/support/World.hpp"
#include "oracle/task/TaskRow.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/Snippet.hpp"

namespace quenlith::oracle {

using build::markup::ParseResult;
using build::markup::Snippet;

/// The slow, literal twin of the task snippet parser. It works on plain records, calls `World`
/// where the real one calls its services, and scans the block again for every pairing test.
class TaskTwin {
 public:
  /// Borrows `serviceWorld`.
  explicit TaskTwin(World& serviceWorld) : world(serviceWorld), lineTwin(serviceWorld) {}

  bool canParse(const Snippet& snippet);
  ParseResult parse(DocumentRecord& document, const Snippet& snippet);
  void reset();

  /// The cells of the decision matrix that the last call of `parse` went through.
  const std::vector<TaskRow>& getRows() const { return rows; }
  std::uint16_t getTaskLineCount() const { return taskLineCount; }

 private:
  struct Call {
    DocumentRecord& document;
    const Snippet& snippet;
    ParseResult result;
    std::vector<TwinMarker> markers;
    std::optional<PlainMarker> taskMarker;
    bool pairFound = true;
    bool overlapping = false;
  };
  enum class Next { kLineParse, kReturn };

  void findTaskMarker(Call& call);
  bool decidePairing(Call& call);
  void decideOverlap(Call& call);
  void countOpenTask(Call& call);
  Next buildHeader(Call& call);
  void addHeader(Call& call);
  void setHeaderAnchor(Call& call);
  Next testSameLine(Call& call);
  void parseLine(Call& call);
  bool hasMatchingTaskMarker(const ustring& blockText, const PlainMarker& taskMarker);
  void closeTask(DocumentRecord& document);
  JsonMap findAppendixEntry(const PlainMarker& taskMarker);
  TaskRecord buildLiveTaskData(const PlainMarker& taskMarker);
  void addTaskFailure(NodeRecord& node, const PlainMarker& taskMarker, const ustring& failureId,
                      const std::string& message);
  void noteIdleRow(const Call& call);
  void noteOpenRow(const Call& call);
  void noteClose(const DocumentRecord& document);

  World& world;
  LineTwin lineTwin;
  std::vector<TaskRow> rows;
  /// Whether the count of an open task went past 65,535 in the last call.
  bool countingWraps = false;
  std::uint16_t taskLineCount = 0;
  std::uint64_t taskNodeIndex = 0;
  ustring currentTaskId;
  std::vector<ustring> overlappingTaskIds;
};

}  // namespace quenlith::oracle
