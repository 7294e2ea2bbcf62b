#include "tessera/check/scan/FileScan.hpp"

#include <algorithm>
#include <iterator>

#include "fl/i18n/search.hpp"

namespace tessera::check::scan {
namespace {

std::vector<FoundMarker> scanLine(std::uint64_t number, std::u16string_view line) {
  std::vector<FoundMarker> found;
  if (fl::i18n::findPair<u'<', u'@'>(line) == line.size()) return found;
  for (const auto& candidate : quenlith::syntax::findMarkerCandidates(line)) {
    found.push_back(makeFoundMarker(candidate, number, line));
  }
  return found;
}

std::vector<std::u16string_view> taskTexts(const std::vector<FoundMarker>& found) {
  std::vector<std::u16string_view> texts;
  for (const FoundMarker& marker : found) {
    if (marker.isTask()) texts.push_back(marker.text());
  }
  return texts;
}

void append(std::vector<FoundMarker>&& found, std::vector<FoundMarker>& all) {
  all.insert(all.end(), std::make_move_iterator(found.begin()),
             std::make_move_iterator(found.end()));
}

}  // namespace

FileScan::FileScan(const source::SourceLines& lines, std::uint64_t appendixLine)
    : lines(lines), appendixLine(appendixLine) {
  const std::uint64_t codeEnd = appendixLine == 0 ? lines.count() + 1 : appendixLine;
  for (std::uint64_t number = 1; number < codeEnd; ++number) {
    append(scanCode(number), code);
  }
  for (std::uint64_t number = codeEnd + 1; number <= lines.count(); ++number) {
    append(scanLine(number, lines.line(number)), appendix);
  }
}

/// The task parser reads the line as it is; the parsers of ranges read it without the backslashes
/// of escaped leaders.
std::vector<FoundMarker> FileScan::scanCode(std::uint64_t number) {
  const std::u16string_view inFile = lines.line(number);
  const std::u16string_view text = escaped.add(number, inFile);
  std::vector<FoundMarker> found = scanLine(number, text);
  if (text.size() == inFile.size()) return found;
  std::vector<FoundMarker> foundInFile = scanLine(number, inFile);
  if (taskTexts(found) == taskTexts(foundInFile)) return found;
  escaped.remove(number);
  for (FoundMarker& marker : foundInFile) marker.isOnAmbiguousLine = true;
  return foundInFile;
}

std::span<const FoundMarker> FileScan::codeOfLine(std::uint64_t number) const noexcept {
  // Not equal_range: clang 14 cannot instantiate the subrange that it returns.
  return {std::ranges::lower_bound(code, number, {}, &FoundMarker::line),
          std::ranges::upper_bound(code, number, {}, &FoundMarker::line)};
}

}  // namespace tessera::check::scan
