#include "oracle/line/LineTwin.hpp"

#include <algorithm>
#include <limits>

#include "TextTwin.hpp"
#include "oracle/support/normalise.hpp"
#include "oracle/support/scanLiterally.hpp"

namespace quenlith::oracle {

namespace {

bool isControl(const PlainMarker& marker) {
  return marker.element == u"control";
}
bool isOutput(const PlainMarker& marker) {
  return marker.element == u"output";
}
bool isTask(const PlainMarker& marker) {
  return marker.element == u"task";
}
bool isTextAnchor(const PlainMarker& marker) {
  return marker.element == u"text" && marker.type == u"anchor";
}

void recordFeatures(const PlainMarker& marker, MarkerTypes& types) {
  if (isControl(marker)) types.insert(u"%<@control>");
  if (isOutput(marker)) types.insert(u"%<@output>");
  if (isTask(marker)) types.insert(u"%<@task>");
  if (isTextAnchor(marker)) types.insert(u"%<@text>");
}

bool lists(const std::vector<TwinMarker>& infos, const PlainMarker& marker) {
  return std::any_of(infos.begin(), infos.end(),
                     [&](const PlainMarker& other) { return other == marker; });
}

bool isSubset(const std::vector<TwinMarker>& part, const std::vector<TwinMarker>& whole) {
  return std::all_of(part.begin(), part.end(),
                     [&](const TwinMarker& info) { return lists(whole, info); });
}

void noteNormalising(const ustring& line, const std::vector<TwinMarker>& after, LineFacts& facts) {
  if (line.find(u"%%\\") == ustring::npos) return;
  const auto before = scanLiterally(line);
  facts.normalisingMakesMarker = !isSubset(after, before);
  facts.normalisingBreaksMarker = !isSubset(before, after);
}

}  // namespace

void LineTwin::parseLine(DocumentRecord& document, const ustring& text, MarkerTypes& types) {
  facts = {};
  world.log("In LineNodeParserService");
  lineNode = NodeRecord::of(NodeKind::kLine);
  world.noteCall("getLineContributorDataParsers");
  world.noteCall("getCodeElementParsers");
  if (text.empty()) {
    appendDefault(text);
  } else {
    parseMarkedLine(text, types);
  }
  document.push_back(lineNode);
}

void LineTwin::parseMarkedLine(const ustring& line, MarkerTypes& types) {
  normalised = normalise(line);
  markers = scanLiterally(normalised);
  facts.markers = markers.size();
  noteNormalising(line, markers, facts);
  hasTask = std::any_of(markers.begin(), markers.end(), isTask);
  slots.assign(fl::i18n::twin::encodeUtf8(normalised).size(), Slot{});
  validRanges.clear();
  for (const TwinMarker& info : markers) {
    recordFeatures(info, types);
    if (isHandled(info)) {
      visitMarker(info);
    } else {
      facts.unhandledMarker = true;
    }
  }
  appendPieces(cutIntoPieces());
}

void LineTwin::visitMarker(const TwinMarker& info) {
  if (info.range) checkPosition(info);
  for (std::uint64_t i = info.position; i < info.position + info.length; ++i) {
    slots.at(i) = Slot{true, &info};
  }
  if (isTextAnchor(info)) setAnchor(info);
  addContributions(info);
}

bool LineTwin::isHandled(const PlainMarker& marker) {
  for (std::size_t parser = 0; parser < world.defaultParser(); ++parser) {
    if (world.canParse(parser, marker)) return true;
  }
  return isOutput(marker) || isTask(marker) || isTextAnchor(marker);
}

void LineTwin::checkPosition(const TwinMarker& info) {
  const Range range = *info.range;
  facts.saturatedRange |= range.second == std::numeric_limits<std::uint64_t>::max();
  if (!isValidPosition(range)) {
    addPositionFailure(info);
    return;
  }
  noteRangePairs(info);
  for (std::uint64_t i = range.first; i < range.second; ++i) slots.at(i) = Slot{false, &info};
}

bool LineTwin::isValidPosition(Range range) {
  if (range.first >= range.second) {
    facts.beginNotBeforeEnd = true;
    return false;
  }
  if (range.second > normalised.size()) {
    facts.endBeyondLine = true;
    return false;
  }
  return std::none_of(markers.begin(), markers.end(),
                      [&](const TwinMarker& record) { return conflicts(record, range); });
}

bool LineTwin::conflicts(const TwinMarker& record, Range range) {
  const std::uint64_t begin = record.position;
  const std::uint64_t end = record.position + record.length;
  if (begin <= range.first && range.first <= end) {
    facts.beginsInMarker = true;
    return true;
  }
  if (begin < range.second && range.second <= end) {
    facts.endsInMarker = true;
    return true;
  }
  if (range.first < begin && range.second > end) {
    facts.enclosesMarker = true;
    return true;
  }
  return false;
}

void LineTwin::addPositionFailure(const TwinMarker& info) {
  using foundation::json::Value;
  world.log("Building a bad position parser failure");
  FailureRecord failure;
  failure.failureId = u"invalid_position_data";
  failure.featureId = info.element;
  failure.subFeatureId = info.type;
  failure.markerId = info.id;
  failure.data["position"] =
      Value(std::vector<Value>{Value(static_cast<double>(info.range->first)),
                               Value(static_cast<double>(info.range->second))});
  const std::size_t before = lineNode.failures.size();
  lineNode.addFailure(failure);
  facts.equalFailures |= lineNode.failures.size() == before;
}

void LineTwin::setAnchor(const PlainMarker& marker) {
  if (marker.id.empty()) return;
  if (hasTask) {
    facts.anchorOnTaskLine = true;
    return;
  }
  facts.anchorSet = true;
  world.log("Setting anchor id on the line node");
  lineNode.anchorId = marker.id;
}

void LineTwin::addContributions(const PlainMarker& marker) {
  for (std::size_t parser = 0; parser < world.getPlan().contributorParsers.size(); ++parser) {
    if (world.isApplicable(parser, marker)) addContribution(parser, marker);
  }
}

void LineTwin::addContribution(std::size_t parser, const PlainMarker& marker) {
  facts.contribution = true;
  world.log("Found an applicable line contributor data parser");
  const Contribution contribution = world.contribute(parser, marker);
  ContributionRecord record;
  record.feature = contribution.feature;
  if (contribution.data) record.lineData.push_back(*contribution.data);
  lineNode.contributions.push_back(record);
}

std::vector<LineTwin::Unit> LineTwin::pairUnitsWithSlots() const {
  std::vector<Unit> units;
  for (std::size_t i = 0; i < normalised.size(); ++i) units.push_back({normalised[i], slots.at(i)});
  return units;
}

std::vector<LineTwin::Piece> LineTwin::cutIntoPieces() const {
  std::vector<Run> runs;
  for (const Unit& unit : pairUnitsWithSlots()) {
    if (runs.empty() || !(runs.back().back().slot == unit.slot)) runs.emplace_back();
    runs.back().push_back(unit);
  }
  std::vector<Run> kept;
  for (const Run& run : runs) {
    if (!run.front().slot.isMarkerText) kept.push_back(run);
  }
  std::vector<Piece> pieces;
  for (const Run& run : kept) {
    const TwinMarker* owner = run.front().slot.owner;
    if (pieces.empty() || pieces.back().owner != owner) pieces.push_back({{}, owner});
    for (const Unit& unit : run) pieces.back().text += unit.unit;
  }
  return pieces;
}

void LineTwin::appendPieces(const std::vector<Piece>& pieces) {
  const bool anyText = std::any_of(pieces.begin(), pieces.end(),
                                   [](const Piece& piece) { return !piece.text.empty(); });
  facts.onlyMarkerText = !anyText;
  if (!anyText) appendDefault({});
  for (const Piece& piece : pieces) {
    if (piece.owner == nullptr) {
      appendDefault(piece.text);
    } else {
      appendOwnedPiece(piece);
    }
  }
  facts.noPieceAtAll = lineNode.children.empty();
}

void LineTwin::appendOwnedPiece(const Piece& piece) {
  const PlainMarker& marker = *piece.owner;
  for (std::size_t parser = 0; parser < world.defaultParser(); ++parser) {
    if (!world.canParse(parser, marker)) continue;
    append(world.parsePiece(parser, piece.text, marker, piece.owner->range));
    return;
  }
  facts.pieceWithoutParser = true;
}

void LineTwin::appendDefault(const ustring& text) {
  if (!world.getPlan().hasDefaultParser) throw MissingDefaultParser();
  append(world.parsePiece(world.defaultParser(), text, std::nullopt, std::nullopt));
}

void LineTwin::append(const PieceResult& result) {
  // Children are unique: a node that is already a child is not appended again. The empty handle is
  // ignored.
  if (result.kind != PieceResult::Kind::kFresh) return;
  lineNode.children.push_back(NodeRecord::plainText(result.text));
}

void LineTwin::noteRangePairs(const TwinMarker& info) {
  facts.validRange = true;
  for (const TwinMarker* other : validRanges) {
    const auto [begin, end] = *info.range;
    const auto [otherBegin, otherEnd] = *other->range;
    const bool common = begin < otherEnd && otherBegin < end;
    const bool inside = otherBegin <= begin && end <= otherEnd;
    const bool outside = begin <= otherBegin && otherEnd <= end;
    facts.rangeInsideAnother |= inside || outside;
    facts.rangesOverlap |= common && !inside && !outside;
    facts.equalMarkersWithRanges |= static_cast<const PlainMarker&>(*other) == info;
  }
  validRanges.push_back(&info);
}

}  // namespace quenlith::oracle
