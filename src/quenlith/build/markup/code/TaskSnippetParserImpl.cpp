#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"

#include <algorithm>
#include <boost/uuid/uuid.hpp>
#include <optional>
#include <ostream>
#include <utility>

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "failures/kdzero/MarkerInfo.hpp"
#include "failures/kdzero/ParserFailure.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"
#include "quenlith/build/markup/code/getStringValue.hpp"
#include "quenlith/build/markup/code/line/MarkerKind.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"
#include "quenlith/shared/logging/trace.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::build::markup::code {

using core::MarkerInfo;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::LiveAppLineNode;
using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using failures::kdzero::ParserFailure;
using fl::i18n::ustring;
using fl::i18n::ustring_to_utf8;
using quenlith::shared::logging::trace;
using quenlith::shared::logging::traceWith;
using syntax::Marker;
using tessera::contentmodel::kdzero::LiveTaskData;

/// One line on its way through the parser.
struct TaskSnippetParserImpl::Line {
  std::shared_ptr<TesseraDocument> document;
  std::vector<MarkerInfo> markers;
  std::optional<MarkerInfo> taskMarker;
  ParseResult result;
  bool pairFound = true;
  bool overlapping = false;

  /// Tells whether the line has a marker of the task that is open or to be opened.
  bool hasOwnTaskMarker() const { return taskMarker.has_value() && !overlapping; }
};

namespace {

/// Tells whether there are two task markers or more and all of them are equal.
bool isOneTaskMarkerRepeated(const std::vector<MarkerInfo>& markers) {
  const auto isTaskMarker = [](const MarkerInfo& found) { return line::isTask(found.marker); };
  const auto first = std::ranges::find_if(markers, isTaskMarker);
  const auto isAnother = [&](const MarkerInfo& found) {
    return isTaskMarker(found) && !(found.marker == first->marker);
  };
  return std::ranges::count_if(markers, isTaskMarker) > 1 &&
         std::ranges::none_of(markers, isAnother);
}

/// Returns the task node that is the first child of the top-level node at `index`, of whatever
/// kind that is; the empty handle when there is no such node or no such child.
LiveAppIntegratedInlineNode findTaskNode(const TesseraDocument& document, std::uint64_t index) {
  if (index >= document.getNumberOfChildren()) return {};
  const Node top = document.getChildAt(index);
  if (top->getChildren().empty()) return {};
  return LiveAppIntegratedInlineNode::castFrom(top->getChildren()[0]);
}

}  // namespace

TaskSnippetParserImpl::TaskSnippetParserImpl(
    const std::shared_ptr<shared::appendix::AppendixBuilder>& appendix,
    const std::shared_ptr<services::ParserServicesProvider>& provider)
    : appendixBuilder(appendix), parserServicesProvider(provider) {}

TaskSnippetParserImpl::~TaskSnippetParserImpl() {
  TaskSnippetParserImpl::reset();
}

void TaskSnippetParserImpl::reset() {
  taskLineCount = 0;
  taskNodeIndex = 0;
  currentTaskId.clear();
  overlappingTaskIds.clear();
  taskIdCounts.clear();
}

bool TaskSnippetParserImpl::canParse(const Snippet& snippet) {
  trace("Checking if parse as task");
  return syntax::has_feature(snippet.text, u"task") || snippet.type.kind == 3;
}

ParseResult TaskSnippetParserImpl::parse(std::shared_ptr<TesseraDocument> document,
                                         const Snippet& snippet) {
  trace("Parsing using the task parser");
  Line line;
  line.document = std::move(document);
  line.markers = syntax::get_markers_from_snippet(snippet.text, false);
  line.taskMarker = syntax::get_marker(line.markers, u"task", u"");
  if (line.taskMarker) decide(line, snippet);
  if (line.pairFound && takeTaskLine(line) == Next::kReturn) return std::move(line.result);
  parseLine(line, snippet);
  return std::move(line.result);
}

void TaskSnippetParserImpl::decide(Line& line, const Snippet& snippet) {
  const Marker& taskMarker = line.taskMarker->marker;
  if (snippet.type.kind > 1) {
    line.overlapping = taskMarker.idView() != currentTaskId;
    if (line.overlapping) overlappingTaskIds.insert(taskMarker.getId());
  } else {
    line.pairFound = hasMatchingTaskMarker(snippet.auxiliaryText, taskMarker);
    if (line.pairFound) currentTaskId = taskMarker.getId();
  }
}

TaskSnippetParserImpl::Next TaskSnippetParserImpl::takeTaskLine(Line& line) {
  if (taskLineCount == 0) return beginTask(line);
  ++taskLineCount;
  if (line.hasOwnTaskMarker()) closeTask(line.document);
  return Next::kParseLine;
}

TaskSnippetParserImpl::Next TaskSnippetParserImpl::beginTask(Line& line) {
  trace("Task marker found for first time");
  trace("Adding task marker to the list of seen markers");
  line.result.markerTypes.insert(Marker(u"task").toString());
  if (line.hasOwnTaskMarker()) addHeader(line);
  return closeOnSameLine(line);
}

void TaskSnippetParserImpl::addHeader(Line& line) {
  const Marker& taskMarker = line.taskMarker->marker;
  const kd::zero::Model model = line.document->getModel();
  constexpr boost::uuids::uuid kNilUuid{};
  LiveAppIntegratedInlineNode inlineNode =
      LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode(kNilUuid);
  LiveAppLineNode header = LiveAppLineNode::Builder(model).createLiveAppLineNode(kNilUuid);

  inlineNode->setId(taskMarker.getId());
  trace("Parsing live task appendix data");
  const LiveTaskData data = buildLiveTaskData(taskMarker);
  trace("Adding Header node to tessera doc");
  traceWith([&data](std::ostream& message) { message << ustring_to_utf8(data.getTaskId()); });
  inlineNode->setLiveTaskData(data);
  header->getChildrenMutable().add(std::move(inlineNode));
  taskNodeIndex = line.document->getNumberOfChildren();
  line.document->addChild(header);
  anchorHeader(line, std::move(header));
}

void TaskSnippetParserImpl::anchorHeader(Line& line, Node header) {
  const std::optional<MarkerInfo> anchor = syntax::get_marker(line.markers, u"text", u"anchor");
  if (!anchor) return;
  trace("Found an anchor marker for the task");
  header->setAnchorId(anchor->marker.idView());
  trace("Adding text marker to the list of seen markers");
  line.result.markerTypes.insert(Marker(u"text").toString());
}

TaskSnippetParserImpl::Next TaskSnippetParserImpl::closeOnSameLine(Line& line) {
  if (!isOneTaskMarkerRepeated(line.markers)) {
    ++taskLineCount;
    return Next::kParseLine;
  }
  trace("Closing task found on same line, closing it now");
  if (line.markers.front().position != 0) {
    ++taskLineCount;
    closeTask(line.document);
    return Next::kParseLine;
  }
  closeTask(line.document);
  line.result.type = SnippetType{};
  return Next::kReturn;
}

void TaskSnippetParserImpl::parseLine(Line& line, const Snippet& snippet) {
  LineNodeParserService service(parserServicesProvider);
  const std::uint64_t index = line.document->getNumberOfChildren();
  line.result = service.parseLine(line.document, snippet, line.result);
  line.result.type = SnippetType{.group = 0, .kind = std::uint8_t(taskLineCount != 0 ? 3 : 0)};
  if (line.pairFound && !line.overlapping) return;
  const Node lineNode = line.document->getChildAt(index);
  if (!line.pairFound) buildMissingTaskMarkerFailure(lineNode, line.taskMarker->marker);
  if (line.overlapping) buildOverlappingTaskMarkerFailure(lineNode, line.taskMarker->marker);
}

bool TaskSnippetParserImpl::hasMatchingTaskMarker(const ustring& blockText,
                                                  const Marker& taskMarker) {
  const ustring id = taskMarker.getId();
  if (taskIdCounts.count(blockText, id) == 2 && !overlappingTaskIds.contains(id)) return true;
  traceWith([&taskMarker](std::ostream& message) {
    message << "No matching task marker was found for " << ustring_to_utf8(taskMarker.toString());
  });
  return false;
}

void TaskSnippetParserImpl::closeTask(const std::shared_ptr<TesseraDocument>& document) {
  traceWith([this](std::ostream& message) {
    message << "End of task found, cleaning up " << taskLineCount;
  });
  if (const auto inlineNode = findTaskNode(*document, taskNodeIndex)) {
    LiveTaskData data = inlineNode->getLiveTaskData();
    traceWith([&data](std::ostream& message) { message << ustring_to_utf8(data.getTaskId()); });
    data.setNumCodeLines(taskLineCount);
    inlineNode->setLiveTaskData(data);
  }
  taskLineCount = 0;
  currentTaskId.clear();
}

TaskSnippetParserImpl::AppendixData TaskSnippetParserImpl::findAppendixEntry(
    const Marker& taskMarker) {
  trace("finding Appendix Entry");
  const shared::appendix::AppendixEntry entry = appendixBuilder->findEntry(taskMarker);
  if (!entry.marker) return {};
  return entry.marker->getData();
}

LiveTaskData TaskSnippetParserImpl::buildLiveTaskData(const Marker& taskMarker) {
  const AppendixData data = findAppendixEntry(taskMarker);
  return LiveTaskData()
      .setAppIdentifier(getStringValue(data, "taskClassDefFile"))
      .setTaskId(getStringValue(data, "uniqueId"))
      .setText(getStringValue(data, "text"))
      .setExecutionModel(getStringValue(data, "run"))
      .setAutoRun(getStringValue(data, "autorun"))
      .setCollapsed(getStringValue(data, "collapsed"))
      .setAppVariables(getStringValue(data, "outputs"))
      .setAppVariablesUserMap(getStringValue(data, "variablesMap"))
      .setAppState(getStringValue(data, "appState"))
      .setView(getStringValue(data, "view"));
}

void TaskSnippetParserImpl::buildMissingTaskMarkerFailure(Node lineNode, const Marker& taskMarker) {
  trace("Building a missing task marker failure");
  addTaskFailure(std::move(lineNode), taskMarker, u"missing_task_marker_pair");
}

void TaskSnippetParserImpl::buildOverlappingTaskMarkerFailure(Node lineNode,
                                                              const Marker& taskMarker) {
  trace("Building an overlapping task marker failure");
  addTaskFailure(std::move(lineNode), taskMarker, u"overlapping_task_marker");
}

void TaskSnippetParserImpl::addTaskFailure(Node lineNode, const Marker& taskMarker,
                                           const char16_t* failureId) {
  auto& parserFailures = lineNode->getParserFailuresMutable();
  ParserFailure failure;
  failure.setFailureId(failureId);
  failure.setMarkerInfo(failures::kdzero::MarkerInfo()
                            .setFeatureId(taskMarker.getElement())
                            .setMarkerId(taskMarker.getId()));
  failure.setFailureData(findAppendixEntry(taskMarker));
  parserFailures.add(failure);
}

}  // namespace quenlith::build::markup::code
