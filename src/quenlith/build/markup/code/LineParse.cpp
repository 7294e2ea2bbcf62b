#include "quenlith/build/markup/code/LineParse.hpp"

#include <algorithm>
#include <boost/uuid/uuid.hpp>
#include <cstddef>
#include <string_view>
#include <utility>

#include "contributors/kdzero/NodeContributorData.hpp"
#include "document/kdzero/Node.hpp"
#include "quenlith/build/markup/code/CodeElement.hpp"
#include "quenlith/build/markup/code/LineContent.hpp"
#include "quenlith/build/markup/code/LineCut.hpp"
#include "quenlith/build/markup/code/MarkerKind.hpp"
#include "quenlith/build/markup/code/PositionCheck.hpp"
#include "quenlith/build/markup/code/withoutEscapes.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"
#include "quenlith/shared/logging/trace.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::build::markup::code {

using contributors::kdzero::NodeContributorData;
using core::MarkerInfo;
using document::kdzero::LineNode;
using fl::i18n::ustring;
using quenlith::shared::logging::trace;
using syntax::Marker;

namespace {

/// The parse of one line that may hold markers into its node. Borrows all that it is given.
class LineParse {
 public:
  LineParse(const kd::zero::Model& lineModel, document::kdzero::Node node,
            const LineParsers& lineParsers, ParseResult& lineResult)
      : model(lineModel), lineNode(std::move(node)), parsers(lineParsers), result(lineResult) {}

  void parse(const ustring& line, LineContent content);

 private:
  void parseNormalised(const ustring& line);
  void takeMarker(const MarkerInfo& marker);
  bool isHandled(const Marker& marker) const;
  void takeRange(const MarkerInfo& marker);
  void setAnchor(const Marker& marker);
  void addContributorData(const Marker& marker);
  void appendPieces(const LineCut::Pieces& pieces);
  void appendPlainText(std::u16string_view text);
  void appendOwned(const LinePiece& piece);

  const kd::zero::Model& model;
  document::kdzero::Node lineNode;
  const LineParsers& parsers;
  ParseResult& result;

  std::size_t lineLength = 0;
  syntax::MarkerList markers;
  bool hasTask = false;
  LineCut cut;
};

void LineParse::parse(const ustring& line, LineContent content) {
  if (content.escape) {
    parseNormalised(withoutEscapes(line));
  } else {
    parseNormalised(line);
  }
}

void LineParse::parseNormalised(const ustring& line) {
  syntax::appendMarkers(line, false, markers);
  if (markers.empty()) {
    appendPlainText(line);
    return;
  }
  hasTask = std::any_of(markers.begin(), markers.end(),
                        [](const MarkerInfo& info) { return isTask(info.marker); });
  lineLength = line.size();
  for (const MarkerInfo& marker : markers) takeMarker(marker);
  appendPieces(cut.cut(line));
}

void LineParse::takeMarker(const MarkerInfo& marker) {
  recordMarkerKind(marker.marker, result);
  if (!isHandled(marker.marker)) return;
  takeRange(marker);
  cut.leaveOut(marker);
  setAnchor(marker.marker);
  addContributorData(marker.marker);
}

bool LineParse::isHandled(const Marker& marker) const {
  return parsers.findAccepting(marker) != nullptr || isOutput(marker) || isTask(marker) ||
         isTextAnchor(marker);
}

void LineParse::takeRange(const MarkerInfo& marker) {
  if (!marker.range) return;
  const auto [begin, end] = *marker.range;
  if (isUsableRange(begin, end, lineLength, {markers.data(), markers.size()})) {
    cut.own(begin, end, marker);
  } else {
    addPositionFailure(lineNode, marker);
  }
}

void LineParse::setAnchor(const Marker& marker) {
  if (!isTextAnchor(marker) || marker.idView().empty() || hasTask) return;
  trace("Setting anchor id on the line node");
  lineNode->setAnchorId(marker.idView());
}

void LineParse::addContributorData(const Marker& marker) {
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

void LineParse::appendPieces(const LineCut::Pieces& pieces) {
  if (pieces.empty()) appendPlainText({});
  for (const LinePiece& piece : pieces) {
    if (piece.owner == nullptr) {
      appendPlainText(piece.text);
    } else {
      appendOwned(piece);
    }
  }
}

void LineParse::appendPlainText(std::u16string_view text) {
  lineNode->getChildrenMutable().add(parsers.parsePlainText(model, text));
}

void LineParse::appendOwned(const LinePiece& piece) {
  CodeElementParser* accepting = parsers.findAccepting(piece.owner->marker);
  if (accepting == nullptr) return;
  const CodeElement element{ustring(piece.text), piece.owner->marker, piece.owner->range};
  lineNode->getChildrenMutable().add(accepting->parse(model, element));
}

}  // namespace

LineNode parseLineNode(const kd::zero::Model& model, const LineParsers& parsers,
                       const ustring& line, ParseResult& result) {
  const LineNode::Builder builder(model);
  const LineContent content = lookInto(line);
  if (content.isPlain() && parsers.makesPlainTextNodes()) {
    return builder.createLineNode(boost::uuids::uuid{}, line);
  }
  LineNode node = builder.createLineNode(boost::uuids::uuid{});
  LineParse(model, node, parsers, result).parse(line, content);
  return node;
}

}  // namespace quenlith::build::markup::code
