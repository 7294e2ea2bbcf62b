#include "oracle/task/TaskTwin.hpp"

#include <algorithm>

#include "TextTwin.hpp"
#include "oracle/support/scanLiterally.hpp"

namespace quenlith::oracle {

namespace {

std::optional<PlainMarker> firstMarker(const std::vector<TwinMarker>& markers,
                                       const ustring& element, const ustring& type) {
  for (const TwinMarker& marker : markers) {
    if (marker.element != element) continue;
    if (type.empty() || marker.type == type) return marker;
  }
  return std::nullopt;
}

std::vector<PlainMarker> taskMarkersOf(const std::vector<TwinMarker>& markers) {
  std::vector<PlainMarker> tasks;
  for (const TwinMarker& marker : markers) {
    if (marker.element == u"task") tasks.push_back(marker);
  }
  return tasks;
}

bool allEqualToFirst(const std::vector<PlainMarker>& list) {
  return std::all_of(list.begin(), list.end(),
                     [&](const PlainMarker& marker) { return marker == list.front(); });
}

ustring getStringValue(const JsonMap& data, const std::string& key) {
  const auto entry = data.find(key);
  if (entry == data.end() || !entry->second.is<std::string>()) return {};
  return fl::i18n::twin::decodeUtf8(entry->second.get<std::string>()).text;
}

}  // namespace

bool TaskTwin::canParse(const Snippet& snippet) {
  world.log("Checking if parse as task");
  const auto markers = scanLiterally(snippet.text);
  return firstMarker(markers, u"task", u"").has_value() || snippet.type.kind == 3;
}

ParseResult TaskTwin::parse(DocumentRecord& document, const Snippet& snippet) {
  rows.clear();
  countingWraps = false;
  world.log("Parsing using the task parser");
  Call call{document, snippet, {}, {}, {}};
  findTaskMarker(call);
  bool counted = true;
  if (call.taskMarker && snippet.type.kind > 1) decideOverlap(call);
  if (call.taskMarker && snippet.type.kind <= 1) counted = decidePairing(call);
  if (counted && taskLineCount != 0) {
    countOpenTask(call);
  } else if (counted && buildHeader(call) == Next::kReturn) {
    call.result.type = {0, 0};
    return call.result;
  }
  parseLine(call);
  return call.result;
}

void TaskTwin::reset() {
  taskLineCount = 0;
  taskNodeIndex = 0;
  currentTaskId.clear();
  overlappingTaskIds.clear();
}

void TaskTwin::findTaskMarker(Call& call) {
  call.markers = scanLiterally(call.snippet.text);
  call.taskMarker = firstMarker(call.markers, u"task", u"");
  if (!call.taskMarker) noteOpenRow(call);
}

void TaskTwin::decideOverlap(Call& call) {
  const ustring id = call.taskMarker->id;
  call.overlapping = id != currentTaskId;
  if (taskLineCount == 0 && !call.overlapping) {
    rows.push_back(id.empty() ? TaskRow::kIdleSameIdBothEmpty : TaskRow::kIdleSameIdLeftOver);
  }
  if (taskLineCount != 0) noteOpenRow(call);
  if (call.overlapping) overlappingTaskIds.push_back(id);
}

bool TaskTwin::decidePairing(Call& call) {
  call.pairFound = hasMatchingTaskMarker(call.snippet.auxiliaryText, *call.taskMarker);
  if (taskLineCount != 0) noteOpenRow(call);
  if (!call.pairFound) {
    if (taskLineCount == 0) rows.push_back(TaskRow::kIdleUnpaired);
    return false;
  }
  currentTaskId = call.taskMarker->id;
  return true;
}

void TaskTwin::countOpenTask(Call& call) {
  ++taskLineCount;
  countingWraps = taskLineCount == 0;
  if (call.taskMarker && !call.overlapping) closeTask(call.document);
}

TaskTwin::Next TaskTwin::buildHeader(Call& call) {
  world.log("Task marker found for first time");
  world.log("Adding task marker to the list of seen markers");
  call.result.markerTypes.insert(u"%<@task>");
  if (call.taskMarker && !call.overlapping) addHeader(call);
  return testSameLine(call);
}

void TaskTwin::addHeader(Call& call) {
  NodeRecord inlineNode = NodeRecord::of(NodeKind::kTaskInline);
  inlineNode.id = call.taskMarker->id;
  world.log("Parsing live task appendix data");
  inlineNode.task = buildLiveTaskData(*call.taskMarker);
  world.log("Adding Header node to tessera doc");
  world.log(fl::i18n::twin::encodeUtf8(inlineNode.task.taskId));
  NodeRecord header = NodeRecord::of(NodeKind::kTaskLine);
  header.children.push_back(inlineNode);
  taskNodeIndex = call.document.size();
  call.document.push_back(header);
  setHeaderAnchor(call);
}

void TaskTwin::setHeaderAnchor(Call& call) {
  const auto anchor = firstMarker(call.markers, u"text", u"anchor");
  if (!anchor) return;
  rows.push_back(anchor->id.empty() ? TaskRow::kHeaderAnchorEmpty : TaskRow::kHeaderAnchor);
  world.log("Found an anchor marker for the task");
  call.document[taskNodeIndex].anchorId = anchor->id;
  world.log("Adding text marker to the list of seen markers");
  call.result.markerTypes.insert(u"%<@text>");
}

TaskTwin::Next TaskTwin::testSameLine(Call& call) {
  noteIdleRow(call);
  const std::vector<PlainMarker> tasks = taskMarkersOf(call.markers);
  if (tasks.size() < 2 || !allEqualToFirst(tasks)) {
    ++taskLineCount;
    return Next::kLineParse;
  }
  world.log("Closing task found on same line, closing it now");
  if (call.markers.front().position == 0) {
    closeTask(call.document);
    return Next::kReturn;
  }
  ++taskLineCount;
  closeTask(call.document);
  return Next::kLineParse;
}

void TaskTwin::parseLine(Call& call) {
  const std::size_t index = call.document.size();
  lineTwin.parseLine(call.document, call.snippet.text, call.result.markerTypes);
  call.result.type = {0, static_cast<std::uint8_t>(taskLineCount != 0 ? 3 : 0)};
  NodeRecord& lineNode = call.document.at(index);
  if (!call.pairFound) {
    addTaskFailure(lineNode, *call.taskMarker, u"missing_task_marker_pair",
                   "Building a missing task marker failure");
  }
  if (call.overlapping) {
    addTaskFailure(lineNode, *call.taskMarker, u"overlapping_task_marker",
                   "Building an overlapping task marker failure");
  }
  const LineFacts& facts = lineTwin.getFacts();
  if (facts.normalisingMakesMarker || facts.normalisingBreaksMarker) {
    rows.push_back(TaskRow::kLineDisagrees);
  }
}

bool TaskTwin::hasMatchingTaskMarker(const ustring& blockText, const PlainMarker& taskMarker) {
  const auto tasks = taskMarkersOf(scanLiterally(blockText));
  const ustring id = taskMarker.id;
  const auto count = std::count_if(tasks.begin(), tasks.end(),
                                   [&](const PlainMarker& marker) { return marker.id == id; });
  const bool overlapped = std::find(overlappingTaskIds.begin(), overlappingTaskIds.end(), id) !=
                          overlappingTaskIds.end();
  if (count == 2 && !overlapped) return true;
  if (count == 2) rows.push_back(TaskRow::kUnpairedByOverlap);
  world.log("No matching task marker was found for " +
            fl::i18n::twin::encodeUtf8(canonicalText(taskMarker)));
  return false;
}

void TaskTwin::closeTask(DocumentRecord& document) {
  world.log("End of task found, cleaning up " + std::to_string(taskLineCount));
  noteClose(document);
  if (taskNodeIndex < document.size()) {
    NodeRecord& top = document[taskNodeIndex];
    const bool hasTask =
        !top.children.empty() && top.children.front().kind == NodeKind::kTaskInline;
    if (hasTask) {
      TaskRecord& task = top.children.front().task;
      world.log(fl::i18n::twin::encodeUtf8(task.taskId));
      task.numCodeLines = taskLineCount;
    }
  }
  taskLineCount = 0;
  currentTaskId.clear();
}

JsonMap TaskTwin::findAppendixEntry(const PlainMarker& taskMarker) {
  world.log("finding Appendix Entry");
  const std::optional<AppendixEntry> entry = world.findEntry(taskMarker);
  return entry ? entry->marker.data : JsonMap{};
}

TaskRecord TaskTwin::buildLiveTaskData(const PlainMarker& taskMarker) {
  const JsonMap data = findAppendixEntry(taskMarker);
  TaskRecord task;
  task.appIdentifier = getStringValue(data, "taskClassDefFile");
  task.taskId = getStringValue(data, "uniqueId");
  task.text = getStringValue(data, "text");
  task.executionModel = getStringValue(data, "run");
  task.autoRun = getStringValue(data, "autorun");
  task.collapsed = getStringValue(data, "collapsed");
  task.appVariables = getStringValue(data, "outputs");
  task.appVariablesUserMap = getStringValue(data, "variablesMap");
  task.appState = getStringValue(data, "appState");
  task.view = getStringValue(data, "view");
  return task;
}

void TaskTwin::addTaskFailure(NodeRecord& node, const PlainMarker& taskMarker,
                              const ustring& failureId, const std::string& message) {
  world.log(message);
  FailureRecord failure;
  failure.failureId = failureId;
  failure.featureId = taskMarker.element;
  failure.markerId = taskMarker.id;
  failure.data = findAppendixEntry(taskMarker);
  node.addFailure(failure);
}

}  // namespace quenlith::oracle
