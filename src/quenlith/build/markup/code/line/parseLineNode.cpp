#include "quenlith/build/markup/code/line/parseLineNode.hpp"

#include <algorithm>
#include <boost/uuid/uuid.hpp>
#include <cstddef>
#include <string_view>
#include <utility>

#include "contributors/kdzero/NodeContributorData.hpp"
#include "document/kdzero/Node.hpp"
#include "quenlith/build/markup/code/CodeElement.hpp"
#include "quenlith/build/markup/code/line/LineContent.hpp"
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

namespace {

/// The parse of one line that may hold markers into its node. Borrows all that it is given.
class LineParser {
 public:
  LineParser(const kd::zero::Model& lineModel, document::kdzero::Node node,
             const ParserLists& parserLists, ParseResult& lineResult)
      : model(lineModel), lineNode(std::move(node)), parsers(parserLists), result(lineResult) {}

  void parse(const ustring& line, LineContent content);

 private:
  void parseNormalised(const ustring& line);
  void takeMarker(const MarkerInfo& marker);
  bool isHandled(const Marker& marker) const;
  void takeRange(const MarkerInfo& marker);
  void setAnchor(const Marker& marker);
  void addContributorData(const Marker& marker);
  void appendSegments(const LineSegmenter::Segments& segments);
  void appendPlainText(std::u16string_view text);
  void appendOwned(const LineSegment& segment);

  const kd::zero::Model& model;
  document::kdzero::Node lineNode;
  const ParserLists& parsers;
  ParseResult& result;

  std::size_t lineLength = 0;
  syntax::MarkerList markers;
  bool hasTask = false;
  LineSegmenter segmenter;
};

void LineParser::parse(const ustring& line, LineContent content) {
  if (content.escape) {
    parseNormalised(normaliseLine(line));
  } else {
    parseNormalised(line);
  }
}

void LineParser::parseNormalised(const ustring& line) {
  syntax::appendMarkers(line, false, markers);
  if (markers.empty()) {
    appendPlainText(line);
    return;
  }
  hasTask = std::any_of(markers.begin(), markers.end(),
                        [](const MarkerInfo& info) { return isTask(info.marker); });
  lineLength = line.size();
  for (const MarkerInfo& marker : markers) takeMarker(marker);
  appendSegments(segmenter.split(line));
}

void LineParser::takeMarker(const MarkerInfo& marker) {
  recordMarkerKind(marker.marker, result);
  if (!isHandled(marker.marker)) return;
  takeRange(marker);
  segmenter.exclude(marker);
  setAnchor(marker.marker);
  addContributorData(marker.marker);
}

bool LineParser::isHandled(const Marker& marker) const {
  return parsers.findAccepting(marker) != nullptr || isOutput(marker) || isTask(marker) ||
         isTextAnchor(marker);
}

void LineParser::takeRange(const MarkerInfo& marker) {
  if (!marker.range) return;
  const auto [begin, end] = *marker.range;
  if (isUsableRange(begin, end, lineLength, {markers.data(), markers.size()})) {
    segmenter.assign(begin, end, marker);
  } else {
    addPositionFailure(lineNode, marker);
  }
}

void LineParser::setAnchor(const Marker& marker) {
  if (!isTextAnchor(marker) || marker.idView().empty() || hasTask) return;
  trace("Setting anchor id on the line node");
  lineNode->setAnchorId(marker.idView());
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

LineNode parseLineNode(const kd::zero::Model& model, const ParserLists& parsers,
                       const ustring& line, ParseResult& result) {
  const LineNode::Builder builder(model);
  const LineContent content = lookInto(line);
  if (content.isPlain() && parsers.makesPlainTextNodes()) {
    return builder.createLineNode(boost::uuids::uuid{}, line);
  }
  LineNode node = builder.createLineNode(boost::uuids::uuid{});
  LineParser(model, node, parsers, result).parse(line, content);
  return node;
}

}  // namespace quenlith::build::markup::code::line
