#include "tessera/check/suspects/findIncompleteOpenings.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "fl/i18n/search.hpp"
#include "quenlith/syntax/MarkerCandidate.hpp"
#include "quenlith/syntax/markers.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/FoundMarker.hpp"
#include "tessera/check/scan/markerText.hpp"
#include "tessera/check/suspects/findRepair.hpp"
#include "tessera/check/suspects/isIntended.hpp"

namespace tessera::check::suspects {

using namespace scan;
namespace {

using namespace std::string_view_literals;

constexpr std::u16string_view kElements[] = {u"control", u"output", u"task", u"text"};

/// Returns whether a known element and the start of an id, a type or a range follow, or "appendix".
bool startsBody(std::u16string_view text) {
  if (text.starts_with(kAppendix)) return true;
  return std::ranges::any_of(kElements, [text](std::u16string_view element) {
    if (text.size() <= element.size() || !text.starts_with(element)) return false;
    const char16_t unit = text[element.size()];
    const std::size_t next = text.find_first_not_of(u" \t", element.size());
    return unit == u'#' || unit == u':' ||
           (isBlank(unit) && next < text.size() && text[next] == u'[');
  });
}

/// Returns the start of the run of comment characters and blanks before `at`.
std::uint64_t findCommentStart(std::u16string_view line, std::uint64_t floor, std::uint64_t at) {
  constexpr std::u16string_view kCommentUnits = u" \t#%;!/-*(<{REMrem";
  while (at > floor && kCommentUnits.find(line[at - 1]) != kCommentUnits.npos) --at;
  return at;
}

/// Finds the damaged openings of one line.
class OpeningSearch {
 public:
  OpeningSearch(std::uint64_t lineNumber, std::u16string_view line, std::vector<Suspect>& suspects)
      : lineNumber(lineNumber), line(line), suspects(suspects) {}

  void run() {
    using fl::i18n::findAny;
    for (std::size_t at = findAny<u'@', u'<'>(line); at < line.size();
         at = findAny<u'@', u'<'>(line, at + 1)) {
      if (line[at] == u'@') {
        examineSign(at);
      } else {
        examineBracket(at);
      }
    }
  }

 private:
  bool isAt(std::size_t at, char16_t unit) const { return at < line.size() && line[at] == unit; }

  /// "@task#a>", with another character for "<" or with none.
  void examineSign(std::size_t at) {
    if (at > 0 && line[at - 1] == u'<') return;
    // "<%@task#a>" is how a marker is written that is not to be used.
    const bool isEscape = at > 1 && line[at - 2] == u'<';
    if (isEscape || !startsBody(line.substr(at + 1))) return;
    const bool isReplaced =
        at > 0 && line[at - 1] != u' ' && attempt({at - 1, 1, u"<"}, at - 1, at + 1);
    if (!isReplaced) attempt({at, 0, u"<"}, at, at + 1);
  }

  void examineBracket(std::size_t at) {
    if (isAt(at + 1, u'@')) return;
    if (startsBody(line.substr(at + 1))) {
      // "@<task#a>" has the two characters swapped.
      const bool isSwapped =
          at > 0 && line[at - 1] == u'@' && attempt({at - 1, 2, u"<@"}, at - 1, at + 1);
      if (!isSwapped) attempt({at + 1, 0, u"@"}, at, at + 1);
    } else if (isAt(at + 2, u'@')) {
      examineSwapped(at + 1);
    } else if (at + 2 < line.size() && startsBody(line.substr(at + 2))) {
      attempt({at + 1, 1, u"@"}, at, at + 2);
    }
  }

  /// "<t@ask#a>": the "@" was swapped with the first character of the element.
  void examineSwapped(std::size_t at) {
    std::u16string body{line[at]};
    body += line.substr(at + 2, 10);
    if (!startsBody(body)) return;
    const std::u16string swapped{u'@', line[at]};
    attempt({at, 2, swapped}, at - 1, at + 2);
  }

  /// Reports the text [`begin`, `end`) if `replacement` makes a marker with an id or a range of it,
  /// or of the line one that starts an appendix.
  bool attempt(const Replacement& replacement, std::size_t begin, std::size_t end) {
    if (attemptAppendix(replacement, begin, end)) return true;
    DamagedText text{lineNumber,   line, findCommentStart(line, floor, begin), 0, begin,
                     std::nullopt, false};
    text.end = std::min(line.find_first_of(u"@<", end), line.size());
    const auto leader = findLeader(text, replacement);
    if (!leader) return false;
    text.begin = *leader;
    auto repair = repairBy(text, replacement);
    if (!repair) return false;
    report(std::move(*repair), begin, end, replacement);
    floor = end;
    return true;
  }

  /// It has no fix: everything after the line would become the appendix.
  bool attemptAppendix(const Replacement& replacement, std::size_t begin, std::size_t end) {
    if (findCommentStart(line, 0, begin) != 0) return false;
    std::u16string repaired(line);
    repaired.replace(replacement.begin, replacement.length, replacement.text);
    if (!quenlith::syntax::isAppendixLine(repaired)) return false;
    suspects.push_back(describe(begin, end, replacement));
    suspects.back().element = kAppendix;
    return true;
  }

  /// Returns the position of the leader that the repaired text would have.
  std::optional<std::uint64_t> findLeader(const DamagedText& text,
                                          const Replacement& replacement) const {
    std::u16string repaired(line.substr(text.begin, text.end - text.begin));
    repaired.replace(replacement.begin - text.begin, replacement.length, replacement.text);
    const auto candidates = quenlith::syntax::findMarkerCandidates(repaired);
    if (candidates.size() != 1 || candidates[0].problem != quenlith::syntax::MarkerProblem::kNone ||
        (candidates[0].id.empty() && candidates[0].range.empty())) {
      return std::nullopt;
    }
    const std::uint64_t leader = text.begin + candidates[0].position;
    if (leader > 0 && line[leader - 1] == u'<') return std::nullopt;
    return leader;
  }

  Suspect describe(std::size_t begin, std::size_t end, const Replacement& replacement) const {
    using namespace catalogue::forms;
    const bool isMissing = replacement.length == 0;
    Suspect suspect;
    suspect.diagnostic = catalogue::makeDiagnostic(
        catalogue::DiagnosticKind::kIncompleteOpening,
        isMissing ? kOpeningIncomplete : kOpeningOther, catalogue::spanOf(lineNumber, begin, end),
        {quoted(isMissing ? replacement.text : line.substr(begin, end - begin))});
    return suspect;
  }

  void report(Repair repair, std::size_t begin, std::size_t end, const Replacement& replacement) {
    const auto candidates = quenlith::syntax::findMarkerCandidates(repair.text);
    const FoundMarker marker = makeFoundMarker(candidates.front(), lineNumber, repair.text);
    Suspect suspect = describe(begin, end, replacement);
    suspect.element = marker.parts.element;
    suspect.ids.push_back(marker.id);
    suspect.diagnostic.fix = std::move(repair.fix);
    suspect.repaired = std::move(repair.text);
    suspects.push_back(std::move(suspect));
  }

  std::uint64_t lineNumber;
  std::u16string_view line;
  std::vector<Suspect>& suspects;
  // The end of the last text that was reported.
  std::uint64_t floor = 0;
};

}  // namespace

void findBrokenOpening(std::uint64_t lineNumber, std::u16string_view line,
                       std::u16string_view nextLine, std::vector<Suspect>& suspects) {
  if (!line.ends_with(u'<') || !nextLine.starts_with(u'@') || !startsBody(nextLine.substr(1)))
    return;
  DamagedText text{lineNumber, line, 0, line.size(), line.size(), nextLine, false};
  text.begin = findCommentStart(line, 0, line.size() - 1);
  std::u16string joined(line.substr(text.begin));
  joined += nextLine;
  const auto leading = quenlith::syntax::findMarkerCandidates(joined);
  if (leading.empty()) return;
  text.begin += leading.front().position;
  auto repair = joinLines(text);
  if (!repair) return;
  Suspect suspect;
  suspect.diagnostic = catalogue::makeDiagnostic(
      catalogue::DiagnosticKind::kUnclosedMarker, catalogue::forms::kEndCutOff,
      catalogue::spanOf(lineNumber, line.size() - 1, line.size()), {"\"<\""});
  const auto candidates = quenlith::syntax::findMarkerCandidates(repair->text);
  suspect.element = candidates.front().element;
  suspect.ids.push_back(makeFoundMarker(candidates.front(), lineNumber, repair->text).id);
  suspect.isCutOff = true;
  suspect.diagnostic.fix = std::move(repair->fix);
  suspect.repaired = std::move(repair->text);
  suspects.push_back(std::move(suspect));
}

void findIncompleteOpenings(std::uint64_t lineNumber, std::u16string_view line,
                            std::vector<Suspect>& suspects) {
  OpeningSearch(lineNumber, line, suspects).run();
}

}  // namespace tessera::check::suspects
