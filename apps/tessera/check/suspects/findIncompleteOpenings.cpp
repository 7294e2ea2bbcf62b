#include "tessera/check/suspects/findIncompleteOpenings.hpp"

#include <algorithm>
#include <string>

#include "fl/i18n/search.hpp"
#include "quenlith/syntax/MarkerCandidate.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/markerText.hpp"
#include "tessera/check/suspects/findRepair.hpp"

namespace tessera::check::suspects {

using namespace scan;
namespace {

using namespace std::string_view_literals;

constexpr std::u16string_view kElements[] = {u"control", u"output", u"task", u"text"};

/// Returns whether a known element and the start of an id or type follow.
bool startsBody(std::u16string_view text) {
  return std::ranges::any_of(kElements, [text](std::u16string_view element) {
    return text.size() > element.size() && text.starts_with(element) &&
           (text[element.size()] == u'#' || text[element.size()] == u':');
  });
}

/// Returns the start of the run of comment characters and blanks before `at`.
std::uint64_t findCommentStart(std::u16string_view line, std::uint64_t floor, std::uint64_t at) {
  constexpr std::u16string_view kCommentUnits = u" \t#%;!/-*(<{REMrem";
  while (at > floor && kCommentUnits.find(line[at - 1]) != kCommentUnits.npos) --at;
  return at;
}

/// Reports the text at `at` if it becomes a marker with an id when `missing` is inserted there.
void examine(std::uint64_t lineNumber, std::u16string_view line, std::uint64_t floor,
             std::uint64_t at, std::u16string_view missing, std::vector<Suspect>& suspects) {
  const std::uint64_t begin = findCommentStart(line, floor, at);
  const std::uint64_t end = std::min(line.find_first_of(u"@<", at + 1), line.size());
  const std::uint64_t insertion = missing == u"<" ? at : at + 1;
  std::u16string patched(line.substr(begin, end - begin));
  patched.insert(insertion - begin, missing);
  const auto candidates = quenlith::syntax::findMarkerCandidates(patched);
  if (candidates.size() != 1 || candidates[0].problem != quenlith::syntax::MarkerProblem::kNone ||
      candidates[0].id.empty()) {
    return;
  }
  // "<%@task#a>" is how a marker is written that is not to be used.
  const std::uint64_t leader = begin + candidates[0].position;
  if (leader > 0 && line[leader - 1] == u'<') return;
  const DamagedText text{lineNumber, line, leader, end, at};
  Suspect suspect;
  suspect.diagnostic =
      catalogue::makeDiagnostic(catalogue::DiagnosticKind::kIncompleteOpening, 0,
                                catalogue::spanOf(lineNumber, at, at + 1), {quoted(missing)});
  const Replacement replacement{insertion, 0, missing};
  if (isRepairedBy(text, replacement)) suspect.diagnostic.fix = makeFix(text, replacement);
  suspect.element = candidates[0].element;
  suspect.ids.emplace_back(candidates[0].id);
  suspects.push_back(std::move(suspect));
}

}  // namespace

void findIncompleteOpenings(std::uint64_t lineNumber, std::u16string_view line,
                            std::vector<Suspect>& suspects) {
  using fl::i18n::findAny;
  std::uint64_t floor = 0;
  for (std::size_t at = findAny<u'@', u'<'>(line); at < line.size();
       at = findAny<u'@', u'<'>(line, at + 1)) {
    if (!startsBody(line.substr(at + 1))) continue;
    if (line[at] == u'<') {
      examine(lineNumber, line, floor, at, u"@", suspects);
    } else if (at == 0 || line[at - 1] != u'<') {
      examine(lineNumber, line, floor, at, u"<", suspects);
    }
    floor = at + 1;
  }
}

}  // namespace tessera::check::suspects
