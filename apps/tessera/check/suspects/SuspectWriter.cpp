#include "tessera/check/suspects/SuspectWriter.hpp"

#include <algorithm>
#include <utility>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/markerText.hpp"
#include "tessera/check/suspects/likeness.hpp"

namespace tessera::check::suspects {

SuspectWriter::SuspectWriter(const scan::FoundMarker& found, std::uint64_t end,
                             std::optional<std::u16string_view> nextLine)
    : found(found), parts(found.parts), line(found.lineText), end(end) {
  text = {found.line, line, parts.position, end, std::min(parts.problemPosition, end), nextLine};
}

void SuspectWriter::addId(std::u16string_view id) {
  if (!id.empty()) suspect.ids.emplace_back(id);
}

void SuspectWriter::report(DiagnosticKind kind, std::size_t form, Span span, Arguments arguments) {
  suspect.diagnostic = catalogue::makeDiagnostic(kind, form, span, arguments);
}

void SuspectWriter::reportRepairable(DiagnosticKind kind, std::size_t form, Arguments arguments) {
  report(kind, form, atProblem(), arguments);
  repair();
}

void SuspectWriter::repair() {
  suspect.isCutOff = line.find_first_not_of(u" \t", text.problem) == line.npos;
  if (suspect.isCutOff) take(joinLines(text));
  if (suspect.diagnostic.fix) return;
  take(findRepair(text));
  suspect.isCompleted = suspect.isCutOff;
  // After a range and a blank, data may have been there.
  const bool isDataLost =
      suspect.isCutOff && scan::isBlank(line.back()) && !parts.range.empty() && parts.data.empty();
  if (isDataLost) suspect.diagnostic.fix.reset();
}

void SuspectWriter::take(std::optional<Repair> repair) {
  if (!repair) return;
  suspect.diagnostic.fix = std::move(repair->fix);
  suspect.repaired = std::move(repair->text);
}

std::u16string_view SuspectWriter::wordAtProblem() const {
  return wordAtStartOf(restAtProblem());
}

std::string SuspectWriter::foundAtProblem() const {
  const std::u16string_view word = wordAtProblem();
  if (!word.empty()) return scan::quoted(word);
  return end < line.size() ? "the next marker" : "the end of the line";
}

catalogue::Span SuspectWriter::atProblem() const {
  return found.spanOf(text.problem, text.problem + wordAtProblem().size());
}

}  // namespace tessera::check::suspects
