#include "tessera/check/findWarnings.hpp"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "quenlith/syntax/markers.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::check {
namespace {

using document::kdzero::Node;
using failures::kdzero::ParserFailure;
using quenlith::syntax::core::MarkerInfo;
using source::AppendixWarning;

std::string describeFailure(const ParserFailure& failure) {
  const auto& info = failure.getMarkerInfo();
  std::string name =
      diagnostics::terminalText(fl::i18n::ustring_to_utf8(info.getFeatureId())) + " marker";
  if (!info.getMarkerId().empty()) name += " " + diagnostics::quotedText(info.getMarkerId());
  const std::u16string_view id = failure.getFailureId();
  if (id == u"missing_task_marker_pair") {
    return "the " + name + " has no partner: its id must stand in exactly two task markers";
  }
  if (id == u"overlapping_task_marker") return "the " + name + " stands inside another task";
  if (id == u"invalid_position_data") {
    return "the range of the " + name + " is empty, beyond the line, or touches a marker";
  }
  return "the " + name + ": " + diagnostics::terminalText(fl::i18n::ustring_to_utf8(id));
}

/// Finds the places of failures in one line of code.
class LineWarnings {
 public:
  LineWarnings(std::uint64_t lineNumber, const fl::i18n::ustring& text) : number(lineNumber) {
    std::uint64_t column = 1;
    std::uint64_t counted = 0;
    for (const MarkerInfo& found : quenlith::syntax::get_markers_from_snippet(text, false)) {
      const std::uint64_t more = found.position - counted;
      column += source::countCharacters(std::u16string_view(text).substr(counted, more));
      counted = found.position;
      columns[{found.marker.getElement(), found.marker.getId()}].push_back(column);
    }
  }

  AppendixWarning locate(const ParserFailure& failure) {
    return {{number, columnOf(failure)}, describeFailure(failure)};
  }

 private:
  using Name = std::pair<fl::i18n::ustring, fl::i18n::ustring>;

  /// The n-th failure of one rule about one id is about the n-th such marker.
  std::uint64_t columnOf(const ParserFailure& failure) {
    const auto& info = failure.getMarkerInfo();
    const std::size_t before = met[{failure.getFailureId(), info.getMarkerId()}]++;
    const auto found = columns.find({info.getFeatureId(), info.getMarkerId()});
    if (found == columns.end()) return 1;
    return found->second[std::min(before, found->second.size() - 1)];
  }

  std::uint64_t number;
  /// The columns of the markers of each element and id, ascending.
  std::map<Name, std::vector<std::uint64_t>> columns;
  std::map<Name, std::size_t> met;
};

/// Returns the failures of `top` and of all below it.
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

void addFailures(const session::ParsedSnippet& snippet, std::vector<AppendixWarning>& warnings) {
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
    const fl::i18n::ustring lineText(*text);
    LineWarnings located(line.number, lineText);
    for (const ParserFailure& failure : failures) warnings.push_back(located.locate(failure));
  }
}

}  // namespace

std::vector<AppendixWarning> findWarnings(const session::ParsedFile& file) {
  std::vector<AppendixWarning> warnings;
  addFailures(file.snippet, warnings);
  std::ranges::copy(file.appendix.warnings, std::back_inserter(warnings));
  std::ranges::copy(source::findUnusedEntries(file.appendix, file.snippet.code.text),
                    std::back_inserter(warnings));
  std::ranges::stable_sort(warnings, {}, [](const AppendixWarning& warning) {
    return std::pair(warning.place.line, warning.place.column);
  });
  return warnings;
}

}  // namespace tessera::check
