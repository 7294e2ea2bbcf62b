#include "tessera/check/rules/parserFailures.hpp"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "quenlith/syntax/markers.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/rules/markerText.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::check::rules {
namespace {

using catalogue::Diagnostic;
using catalogue::DiagnosticKind;
using catalogue::Span;
using document::kdzero::Node;
using failures::kdzero::ParserFailure;
using quenlith::syntax::core::MarkerInfo;

std::string nameOf(const failures::kdzero::MarkerInfo& info) {
  return info.getMarkerId().empty() ? "without an id" : quoted(info.getMarkerId());
}

Diagnostic describe(const ParserFailure& failure, Span span) {
  using enum DiagnosticKind;
  const auto& info = failure.getMarkerInfo();
  const std::u16string_view id = failure.getFailureId();
  const std::string feature = plainText(info.getFeatureId());
  const auto make = [&](DiagnosticKind kind, std::initializer_list<std::string_view> arguments) {
    return catalogue::makeDiagnostic(kind, 0, span, arguments);
  };
  if (id == u"missing_task_marker_pair") return make(kMissingTaskMarkerPair, {nameOf(info)});
  if (id == u"overlapping_task_marker") return make(kOverlappingTaskMarker, {nameOf(info)});
  if (id == u"invalid_position_data") return make(kInvalidPositionData, {feature, nameOf(info)});
  return make(kParserFailure, {feature + " marker " + nameOf(info), plainText(id)});
}

/// Finds the spans of failures in one line of code.
class LineFailures {
 public:
  LineFailures(std::uint64_t lineNumber, const fl::i18n::ustring& text)
      : lineNumber(lineNumber), length(text.size()) {
    for (const MarkerInfo& info : quenlith::syntax::get_markers_from_snippet(text, false)) {
      spans[{info.marker.getElement(), info.marker.getId()}].push_back(
          catalogue::spanOf(lineNumber, info.position, info.position + info.length));
    }
  }

  /// The n-th failure of one rule about one id is about the n-th such marker. A failure about no
  /// marker of the line is about the whole line.
  Span spanOf(const ParserFailure& failure) {
    const auto& info = failure.getMarkerInfo();
    const std::size_t before = met[{failure.getFailureId(), info.getMarkerId()}]++;
    const auto known = spans.find({info.getFeatureId(), info.getMarkerId()});
    if (known == spans.end()) return catalogue::spanOf(lineNumber, 0, length);
    return known->second[std::min(before, known->second.size() - 1)];
  }

 private:
  using Name = std::pair<fl::i18n::ustring, fl::i18n::ustring>;

  std::uint64_t lineNumber;
  std::uint64_t length;
  /// The markers of each element and id, in ascending order.
  std::map<Name, std::vector<Span>> spans;
  std::map<Name, std::size_t> met;
};

/// Returns the failures of `top` and of all nodes below it.
std::vector<ParserFailure> failuresOf(const Node& top) {
  std::vector<ParserFailure> found;
  std::vector<const Node*> pending{&top};
  while (!pending.empty()) {
    const Node& node = *pending.back();
    pending.pop_back();
    const auto own = node->getParserFailures();
    found.insert(found.end(), own.begin(), own.end());
    const auto& children = node->getChildren();
    for (std::size_t i = children.size(); i > 0; --i) pending.push_back(&children[i - 1]);
  }
  return found;
}

}  // namespace

void checkParserFailures(const session::ParsedSnippet& snippet, std::vector<Diagnostic>& found) {
  const auto& nodes = snippet.document->getChildren();
  session::LineTable::Cursor outcomes(snippet.lines);
  source::LineCursor texts(snippet.code.text, snippet.code.any);
  while (outcomes.advance()) {
    const auto line = outcomes.line();
    const auto text = texts.next();
    std::vector<ParserFailure> failures;
    for (std::uint64_t i = 0; i < line.outcome.nodeCount; ++i) {
      std::ranges::move(failuresOf(nodes[line.firstNode + i]), std::back_inserter(failures));
    }
    if (failures.empty()) continue;
    LineFailures located(line.number, fl::i18n::ustring(*text));
    for (const ParserFailure& failure : failures) {
      found.push_back(describe(failure, located.spanOf(failure)));
    }
  }
}

}  // namespace tessera::check::rules
