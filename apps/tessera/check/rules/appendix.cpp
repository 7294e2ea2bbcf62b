#include "tessera/check/rules/appendix.hpp"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "quenlith/syntax/MarkerCandidate.hpp"
#include "quenlith/syntax/markers.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/rules/markerText.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::check::rules {
namespace {

using catalogue::Diagnostic;
using catalogue::DiagnosticKind;
using catalogue::Span;
using catalogue::spanOf;
using quenlith::syntax::Marker;
using quenlith::syntax::MarkerCandidate;
using quenlith::syntax::MarkerProblem;
using quenlith::syntax::core::MarkerInfo;

using Key = std::pair<fl::i18n::ustring, fl::i18n::ustring>;

Key keyOf(const Marker& marker) {
  return {marker.getElement(), marker.getId()};
}

std::string entryName(const Marker& marker) {
  return plainText(marker.elementView()) + " " + nameOf(marker);
}

/// Returns whether the author certainly meant a marker.
bool isIntended(const MarkerCandidate& candidate) {
  return isComplete(candidate.comment) && candidate.problem != MarkerProblem::kMissingElement &&
         candidate.problem != MarkerProblem::kUnknownElement;
}

/// Checks the lines of an appendix one by one.
class AppendixCheck {
 public:
  AppendixCheck(std::uint64_t lineBefore, std::set<Key> used, std::vector<Diagnostic>& found)
      : number(lineBefore), used(std::move(used)), found(found) {}

  void checkLine(const fl::i18n::ustring& line) {
    using enum DiagnosticKind;
    ++number;
    const std::size_t text = line.find_first_not_of(u" \t");
    if (text == line.npos) return;
    const Span whole = spanOf(number, text, line.find_last_not_of(u" \t") + 1);
    if (quenlith::syntax::isAppendixLine(line)) return report(kSecondAppendixLine, whole, {});
    const std::vector<MarkerInfo> markers = quenlith::syntax::get_markers_from_snippet(line, false);
    if (markers.empty()) return reportDamage(line, whole);
    checkEntry(markers.front().marker, spanOf(markers.front()));
    if (markers.size() > 1) report(kTextBesideEntry, spanOf(markers[1]), {});
  }

 private:
  Span spanOf(const MarkerInfo& info) const {
    return catalogue::spanOf(number, info.position, info.position + info.length);
  }

  Span spanOf(std::uint64_t line, std::uint64_t begin, std::uint64_t end) const {
    return catalogue::spanOf(line, begin, end);
  }

  void report(DiagnosticKind kind, Span span, std::initializer_list<std::string_view> arguments) {
    found.push_back(catalogue::makeDiagnostic(kind, 0, span, arguments));
  }

  void reportDamage(std::u16string_view line, Span whole) {
    using enum DiagnosticKind;
    const auto damaged = quenlith::syntax::findDamagedMarkers(line);
    const auto intended = std::ranges::find_if(damaged, isIntended);
    if (intended == damaged.end()) return report(kTextInAppendix, whole, {});
    const std::uint64_t at = intended->problemPosition;
    const std::uint64_t end = at < line.size() ? at + 1 : at;
    const bool isJson = *intended->jsonReason != '\0';
    report(kDamagedMarker, catalogue::spanOf(number, at, end),
           {isJson ? intended->jsonReason : describe(intended->problem)});
  }

  void checkEntry(const Marker& marker, Span span) {
    using enum DiagnosticKind;
    if (!entries.insert(keyOf(marker)).second) {
      report(kDuplicateEntry, span, {entryName(marker)});
    } else if (!used.contains(keyOf(marker))) {
      report(kUnusedEntry, span, {entryName(marker)});
    }
  }

  std::uint64_t number;
  std::set<Key> used;
  std::set<Key> entries;
  std::vector<Diagnostic>& found;
};

}  // namespace

void checkAppendix(const source::SourceText& source, const fl::i18n::ustring& code,
                   std::vector<Diagnostic>& found) {
  if (!source.appendix.any) return;
  std::set<Key> used;
  for (const MarkerInfo& info : quenlith::syntax::get_markers_from_snippet(code, false)) {
    used.insert(keyOf(info.marker));
  }
  AppendixCheck check(source.appendixLine, std::move(used), found);
  source::LineCursor cursor(source.appendix.text, source.appendix.any);
  while (const auto line = cursor.next()) check.checkLine(fl::i18n::ustring(*line));
}

}  // namespace tessera::check::rules
