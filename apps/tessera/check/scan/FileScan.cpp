#include "tessera/check/scan/FileScan.hpp"

#include <algorithm>

#include "fl/i18n/search.hpp"

namespace tessera::check::scan {
namespace {

void scanLine(std::uint64_t number, std::u16string_view line, std::vector<FoundMarker>& found) {
  if (fl::i18n::findPair<u'<', u'@'>(line) == line.size()) return;
  const bool isEscaped = line.find(u"%%\\") != line.npos;
  for (const auto& candidate : quenlith::syntax::findMarkerCandidates(line)) {
    found.push_back(makeFoundMarker(candidate, number, line));
    found.back().isOnEscapedLine = isEscaped;
  }
}

}  // namespace

FileScan::FileScan(const source::SourceLines& lines, std::uint64_t appendixLine)
    : lines(lines), appendixLine(appendixLine) {
  const std::uint64_t codeEnd = appendixLine == 0 ? lines.count() + 1 : appendixLine;
  for (std::uint64_t number = 1; number < codeEnd; ++number) {
    scanLine(number, lines.line(number), code);
  }
  for (std::uint64_t number = codeEnd + 1; number <= lines.count(); ++number) {
    scanLine(number, lines.line(number), appendix);
  }
}

std::span<const FoundMarker> FileScan::codeOfLine(std::uint64_t number) const noexcept {
  // Not equal_range: clang 14 cannot instantiate the subrange that it returns.
  return {std::ranges::lower_bound(code, number, {}, &FoundMarker::line),
          std::ranges::upper_bound(code, number, {}, &FoundMarker::line)};
}

}  // namespace tessera::check::scan
