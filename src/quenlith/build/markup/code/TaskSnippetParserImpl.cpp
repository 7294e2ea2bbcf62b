#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"

#include <algorithm>
#include <optional>
#include <ostream>
#include <string_view>
#include <utility>

#include "document/kdzero/LiveAppLineNode.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"
#include "quenlith/build/markup/code/line/MarkerKind.hpp"
#include "quenlith/build/markup/code/task/TaskHeader.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"
#include "quenlith/shared/logging/trace.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::build::markup::code {

using core::MarkerInfo;
using document::kdzero::LiveAppLineNode;
using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using fl::i18n::ustring_to_utf8;
using line::MarkerKind;
using quenlith::shared::logging::trace;
using quenlith::shared::logging::traceWith;
using syntax::Marker;
using namespace std::string_view_literals;

/// The state of the parse of one line.
struct TaskSnippetParserImpl::Line {
  std::shared_ptr<TesseraDocument> document;
  std::vector<MarkerInfo> markers;
  std::optional<MarkerInfo> taskMarker;
  ParseResult result;
  bool pairFound = true;
  bool overlapping = false;

  /// Returns whether the line has a marker of the task that is open or that it opens.
  bool hasOwnTaskMarker() const { return taskMarker.has_value() && !overlapping; }
};

namespace {

/// Returns whether there are at least two task markers and all of them are equal.
bool isOneTaskMarkerRepeated(const std::vector<MarkerInfo>& markers) {
  const auto isTaskMarker = [](const MarkerInfo& found) {
    return line::kindOf(found.marker) == MarkerKind::kTask;
  };
  const auto first = std::ranges::find_if(markers, isTaskMarker);
  const auto isAnother = [&](const MarkerInfo& found) {
    return isTaskMarker(found) && !(found.marker == first->marker);
  };
  return std::ranges::count_if(markers, isTaskMarker) > 1 &&
         std::ranges::none_of(markers, isAnother);
}

}  // namespace

TaskSnippetParserImpl::TaskSnippetParserImpl(
    const std::shared_ptr<shared::appendix::AppendixBuilder>& appendixBuilder,
    const std::shared_ptr<services::ParserServicesProvider>& parserServicesProvider)
    : appendixBuilder(appendixBuilder), parserServicesProvider(parserServicesProvider) {}

TaskSnippetParserImpl::~TaskSnippetParserImpl() {
  TaskSnippetParserImpl::reset();
}

void TaskSnippetParserImpl::reset() {
  taskLineCount = 0;
  taskNodeIndex = 0;
  currentTaskId.clear();
  overlappingTaskIds.clear();
  taskIdCounts.clear();
  taskFailures.clear();
}

bool TaskSnippetParserImpl::canParse(const Snippet& snippet) {
  trace("Checking if parse as task");
  return syntax::has_feature(snippet.text, ustring(u"task"sv)) || snippet.type.kind == 3;
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
    line.overlapping = taskMarker.getId() != currentTaskId;
    if (line.overlapping) overlappingTaskIds.insert(taskMarker.getId());
  } else {
    line.pairFound = hasMatchingTaskMarker(snippet, taskMarker);
    if (line.pairFound) currentTaskId = taskMarker.getId();
  }
}

TaskSnippetParserImpl::Next TaskSnippetParserImpl::takeTaskLine(Line& line) {
  if (taskLineCount == 0) return beginTask(line);
  ++taskLineCount;
  if (line.hasOwnTaskMarker()) closeTask(*line.document);
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
  LiveAppLineNode header =
      task::makeTaskHeader(line.document->getModel(), *appendixBuilder, line.taskMarker->marker);
  taskNodeIndex = line.document->getNumberOfChildren();
  line.document->addChild(header);
  anchorHeader(line, std::move(header));
}

void TaskSnippetParserImpl::anchorHeader(Line& line, Node header) {
  const std::optional<MarkerInfo> anchor = syntax::get_marker(line.markers, u"text", u"anchor");
  if (!anchor) return;
  trace("Found an anchor marker for the task");
  header->setAnchorId(anchor->marker.getId());
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
    closeTask(*line.document);
    return Next::kParseLine;
  }
  closeTask(*line.document);
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
  const Marker& taskMarker = line.taskMarker->marker;
  if (line.overlapping) {
    taskFailures.addOverlapping(lineNode, *appendixBuilder, taskMarker);
  } else {
    taskFailures.addMissingPartner(lineNode, *appendixBuilder, taskMarker);
  }
}

bool TaskSnippetParserImpl::hasMatchingTaskMarker(const Snippet& snippet,
                                                  const Marker& taskMarker) {
  const ustring id = taskMarker.getId();
  const std::size_t count = taskIdCounts.count(snippet.auxiliaryText, snippet.blockVersion, id);
  if (count == 2 && !overlappingTaskIds.contains(id)) return true;
  traceWith([&taskMarker](std::ostream& message) {
    message << "No matching task marker was found for " << ustring_to_utf8(taskMarker.toString());
  });
  return false;
}

void TaskSnippetParserImpl::closeTask(const TesseraDocument& document) {
  traceWith([this](std::ostream& message) {
    message << "End of task found, cleaning up " << taskLineCount;
  });
  task::storeLineCount(document, taskNodeIndex, taskLineCount);
  taskLineCount = 0;
  currentTaskId.clear();
}

}  // namespace quenlith::build::markup::code
