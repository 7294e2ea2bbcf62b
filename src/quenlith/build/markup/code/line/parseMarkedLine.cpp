#include "quenlith/build/markup/code/line/parseMarkedLine.hpp"

#include <boost/uuid/uuid.hpp>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "contributors/kdzero/NodeContributorData.hpp"
#include "quenlith/build/markup/code/CodeElement.hpp"
#include "quenlith/build/markup/code/line/LineSegmenter.hpp"
#include "quenlith/build/markup/code/line/MarkerKind.hpp"
#include "quenlith/build/markup/code/line/PositionCheck.hpp"
#include "quenlith/build/markup/code/line/normaliseLine.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"
#include "quenlith/shared/logging/trace.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::build::markup::code::line {

using contributors::kdzero::NodeContributorData;
using core::MarkerInfo;
using document::kdzero::LineNode;
using fl::i18n::ustring;
using quenlith::shared::logging::trace;
using syntax::Marker;
using namespace std::string_view_literals;

namespace {

/// Parses one line that may contain markers into its node. Borrows its arguments.
class LineParser {
 public:
  LineParser(const kd::zero::Model& model, const LineNode& lineNode, const ParserLists& parsers,
             ParseResult& result)
      : model(model), lineNode(lineNode), parsers(parsers), result(result) {}

  /// `line` is normalised.
  void parse(const ustring& line);

 private:
  void parseMarker(const MarkerInfo& info);
  bool isHandled(MarkerKind kind, const Marker& marker) const;
  void assignRange(const MarkerInfo& info);
  void setAnchor(const Marker& marker);
  void addContributorData(const Marker& marker);
  void appendSegments(const LineSegmenter::Segments& segments);
  void appendPlainText(std::u16string_view text);
  void appendOwned(const LineSegment& segment);

  const kd::zero::Model& model;
  const LineNode& lineNode;
  const ParserLists& parsers;
  ParseResult& result;

  std::size_t lineLength = 0;
  std::vector<MarkerInfo> markers;
  bool hasTask = false;
  LineSegmenter segmenter;
};

void LineParser::parse(const ustring& line) {
  markers = syntax::get_markers_from_snippet(line, false);
  if (markers.empty()) {
    appendPlainText(line);
    return;
  }
  hasTask = syntax::has_feature(markers, ustring(u"task"sv));
  lineLength = line.size();
  for (const MarkerInfo& info : markers) parseMarker(info);
  appendSegments(segmenter.split(line));
}

void LineParser::parseMarker(const MarkerInfo& info) {
  const MarkerKind kind = kindOf(info.marker);
  recordMarkerKind(kind, result);
  if (!isHandled(kind, info.marker)) return;
  assignRange(info);
  segmenter.exclude(info);
  if (kind == MarkerKind::kTextAnchor && !hasTask) setAnchor(info.marker);
  addContributorData(info.marker);
}

bool LineParser::isHandled(MarkerKind kind, const Marker& marker) const {
  return parsers.findAccepting(marker) != nullptr || kind == MarkerKind::kOutput ||
         kind == MarkerKind::kTask || kind == MarkerKind::kTextAnchor;
}

void LineParser::assignRange(const MarkerInfo& info) {
  if (!info.range) return;
  const auto [begin, end] = *info.range;
  if (isUsableRange(begin, end, lineLength, markers)) {
    segmenter.assign(begin, end, info);
  } else {
    addPositionFailure(lineNode, info);
  }
}

void LineParser::setAnchor(const Marker& marker) {
  const ustring id = marker.getId();
  if (id.empty()) return;
  trace("Setting anchor id on the line node");
  lineNode->setAnchorId(id);
}

void LineParser::addContributorData(const Marker& marker) {
  for (const auto& parser : parsers.contributorDataParsers()) {
    if (!parser->isApplicable(marker)) continue;
    trace("Found an applicable line contributor data parser");
    auto [feature, lineData] = parser->parse(model, marker);
    NodeContributorData contributed =
        NodeContributorData::Builder(model).createNodeContributorData(boost::uuids::uuid{});
    contributed->setContributingFeature(feature);
    contributed->getLineDataListMutable().add(std::move(lineData));
    lineNode->getContributorDataMutable().add(std::move(contributed));
  }
}

void LineParser::appendSegments(const LineSegmenter::Segments& segments) {
  if (segments.empty()) appendPlainText({});
  for (const LineSegment& segment : segments) {
    if (segment.owner == nullptr) {
      appendPlainText(segment.text);
    } else {
      appendOwned(segment);
    }
  }
}

void LineParser::appendPlainText(std::u16string_view text) {
  lineNode->getChildrenMutable().add(parsers.parsePlainText(model, text));
}

void LineParser::appendOwned(const LineSegment& segment) {
  CodeElementParser* accepting = parsers.findAccepting(segment.owner->marker);
  if (accepting == nullptr) return;
  const CodeElement element{ustring(segment.text), segment.owner->marker, segment.owner->range};
  lineNode->getChildrenMutable().add(accepting->parse(model, element));
}

}  // namespace

void parseMarkedLine(const kd::zero::Model& model, const LineNode& lineNode,
                     const ParserLists& parsers, ScannedLine line, ParseResult& result) {
  // A copy also without an escaped leader: a service may change the text of the snippet.
  const ustring normalised =
      line.mayContainEscapedLeader() ? normaliseLine(line.text()) : line.text();
  LineParser(model, lineNode, parsers, result).parse(normalised);
}

}  // namespace quenlith::build::markup::code::line
