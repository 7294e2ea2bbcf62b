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

/// Returns whether both are the same marker of a file, in which `begin` is the position of that in
/// a text without backslashes.
bool isSame(const FoundMarker& marker, std::uint64_t begin, const FoundMarker& inFile) {
  return begin == inFile.parts.opening && marker.id == inFile.id &&
         marker.parts.data == inFile.parts.data;
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
  if (markEscapedTasks(found, foundInFile)) return found;
  escaped.remove(number);
  for (FoundMarker& marker : foundInFile) marker.isOnAmbiguousLine = true;
  return foundInFile;
}

/// Marks the task markers that are not in `foundInFile`. Returns whether those in `foundInFile` are
/// the others.
bool FileScan::markEscapedTasks(std::vector<FoundMarker>& found,
                                const std::vector<FoundMarker>& foundInFile) const {
  const auto nextTask = [&foundInFile](auto from) {
    return std::find_if(from, foundInFile.end(), [](const FoundMarker& m) { return m.isTask(); });
  };
  auto inFile = nextTask(foundInFile.begin());
  for (FoundMarker& marker : found) {
    if (!marker.isTask()) continue;
    const std::uint64_t opening = marker.parts.opening;
    const std::uint64_t begin = escaped.inFile(marker.spanOf(opening, opening)).begin.unit;
    marker.isEscapedTask = inFile == foundInFile.end() || !isSame(marker, begin, *inFile);
    if (!marker.isEscapedTask) inFile = nextTask(inFile + 1);
  }
  return inFile == foundInFile.end();
}

std::span<const FoundMarker> FileScan::codeOfLine(std::uint64_t number) const noexcept {
  // Not equal_range: clang 14 cannot instantiate the subrange that it returns.
  return {std::ranges::lower_bound(code, number, {}, &FoundMarker::line),
          std::ranges::upper_bound(code, number, {}, &FoundMarker::line)};
}

}  // namespace tessera::check::scan
