#include "tessera/source/SourceLines.hpp"

#include <algorithm>
#include <utility>

namespace tessera::source {
namespace {

constexpr std::size_t kStride = 512;

/// Returns the characters before each multiple of `kStride` in `line`. A pair that is cut there
/// counts as begun: its second half is the end of the character.
std::vector<std::uint64_t> countAtStrides(std::u16string_view line) {
  std::vector<std::uint64_t> counts{0};
  for (std::size_t at = 0; at + kStride <= line.size(); at += kStride) {
    std::uint64_t count = counts.back() + countCharacters(line.substr(at, kStride));
    const bool cut = at != 0 && (line[at - 1] & 0xFC00) == 0xD800 && (line[at] & 0xFC00) == 0xDC00;
    counts.push_back(cut ? count - 1 : count);
  }
  return counts;
}

}  // namespace

SourceLines::SourceLines(JoinedLines code, std::u16string appendixLine, JoinedLines appendix) {
  blocks.push_back(std::make_unique<const JoinedLines>(std::move(code)));
  if (!appendixLine.empty()) {
    blocks.push_back(
        std::make_unique<const JoinedLines>(JoinedLines{std::move(appendixLine), true}));
    blocks.push_back(std::make_unique<const JoinedLines>(std::move(appendix)));
  }
  for (const auto& block : blocks) add(*block);
}

SourceLines::SourceLines(std::vector<std::uint64_t> numbers, JoinedLines texts)
    : numbers(std::move(numbers)) {
  blocks.push_back(std::make_unique<const JoinedLines>(std::move(texts)));
  add(*blocks.front());
}

void SourceLines::add(const JoinedLines& block) {
  LineCursor cursor(block.text, block.any);
  while (const auto line = cursor.next()) lines.push_back(*line);
}

std::u16string_view SourceLines::line(std::uint64_t number) const noexcept {
  if (!numbers.empty()) {
    const auto found = std::ranges::lower_bound(numbers, number);
    if (found == numbers.end() || *found != number) return {};
    return lines[static_cast<std::size_t>(found - numbers.begin())];
  }
  return number <= lines.size() ? lines[number - 1] : std::u16string_view();
}

std::uint64_t SourceLines::countCharactersBefore(std::uint64_t number, std::uint64_t unit) const {
  const std::u16string_view text = line(number);
  if (text.size() < 2 * kStride) return countCharacters(text.substr(0, unit));
  auto found = counts.find(number);
  if (found == counts.end()) found = counts.emplace(number, countAtStrides(text)).first;
  const std::size_t stride = unit / kStride;
  const std::size_t at = stride * kStride;
  std::uint64_t count = found->second[stride] + countCharacters(text.substr(at, unit - at));
  const bool cut =
      at != 0 && unit > at && (text[at - 1] & 0xFC00) == 0xD800 && (text[at] & 0xFC00) == 0xDC00;
  return cut ? count - 1 : count;
}

}  // namespace tessera::source
