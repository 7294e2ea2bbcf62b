#include "tessera/check/suspects/findSuspects.hpp"

#include <algorithm>
#include <optional>
#include <string>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/BlockComments.hpp"
#include "tessera/check/suspects/closeComment.hpp"
#include "tessera/check/suspects/describeProblem.hpp"
#include "tessera/check/suspects/findEscapedTasks.hpp"
#include "tessera/check/suspects/findIncompleteOpenings.hpp"
#include "tessera/check/suspects/isIntended.hpp"

namespace tessera::check::suspects {

using namespace scan;
namespace {

/// Returns the end of the text that belongs to the candidate at `index`: the next one on its line,
/// or the end of the line.
std::uint64_t segmentEnd(std::span<const FoundMarker> found, std::size_t index) {
  const FoundMarker& here = found[index];
  const bool isLast = index + 1 == found.size() || found[index + 1].line != here.line;
  return isLast ? here.lineText.size() : found[index + 1].parts.position;
}

void addSuspects(const FileScan& scan, BlockComments& comments, std::span<const FoundMarker> found,
                 std::vector<Suspect>& suspects) {
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (found[i].isMarker() || found[i].isOnAmbiguousLine || !isIntended(found[i])) continue;
    const FoundMarker* const before =
        i > 0 && found[i - 1].line == found[i].line ? &found[i - 1] : nullptr;
    std::optional<std::u16string_view> nextLine;
    if (found[i].line < scan.lines.count()) nextLine = scan.line(found[i].line + 1);
    const std::uint64_t end = segmentEnd(found, i);
    suspects.push_back(describeProblem(found[i], end, before, nextLine));
    const bool isCloserMissing =
        found[i].parts.problem == quenlith::syntax::MarkerProblem::kMissingCloser;
    if (isCloserMissing && !suspects.back().diagnostic.fix) {
      closeComment(found[i], end, comments, suspects.back());
    }
  }
}

void sortByPlace(std::vector<Suspect>& suspects) {
  std::ranges::stable_sort(suspects, {},
                           [](const Suspect& suspect) { return suspect.diagnostic.span.begin; });
}

}  // namespace

void explainBy(Suspect& suspect, catalogue::Diagnostic& diagnostic) {
  suspect.isExplained = true;
  diagnostic.notes.push_back({suspect.diagnostic.span, suspect.diagnostic.message});
  for (auto& note : suspect.diagnostic.notes) diagnostic.notes.push_back(std::move(note));
  if (!diagnostic.fix) diagnostic.fix = std::move(suspect.diagnostic.fix);
}

Suspects findSuspects(const FileScan& scan) {
  Suspects suspects;
  BlockComments comments(scan);
  addSuspects(scan, comments, scan.code, suspects.code);
  addSuspects(scan, comments, scan.appendix, suspects.appendix);
  findEscapedTasks(scan, suspects.code);
  for (std::uint64_t number = 1; number <= scan.lines.count(); ++number) {
    if (number == scan.appendixLine) continue;
    const bool isCode = scan.appendixLine == 0 || number < scan.appendixLine;
    std::vector<Suspect>& found = isCode ? suspects.code : suspects.appendix;
    const std::u16string_view line = scan.line(number);
    findIncompleteOpenings(number, line, found);
    if (number < scan.lines.count()) findBrokenOpening(number, line, scan.line(number + 1), found);
  }
  sortByPlace(suspects.code);
  sortByPlace(suspects.appendix);
  return suspects;
}

}  // namespace tessera::check::suspects
