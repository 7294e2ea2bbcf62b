#include "tessera/input/lines.hpp"

#include <cstring>

namespace tessera::input {
namespace {

constexpr std::uint64_t kOnes = 0x0001000100010001;
constexpr std::uint64_t kTops = 0x8000800080008000;

/// Tells whether one of the four units at `units` equals the one that `wanted` repeats: the
/// usual trick with a borrow, which reaches the top bit of a unit only from a zero.
bool hasUnit(const char16_t* units, std::uint64_t wanted) noexcept {
  std::uint64_t four;
  std::memcpy(&four, units, sizeof four);
  four ^= wanted;
  return ((four - kOnes) & ~four & kTops) != 0;
}

}  // namespace

std::size_t findUnit(std::u16string_view text, char16_t unit) noexcept {
  std::size_t at = 0;
  while (at + 4 <= text.size() && !hasUnit(text.data() + at, kOnes * unit)) at += 4;
  while (at < text.size() && text[at] != unit) ++at;
  return at;
}

std::uint64_t countCharacters(std::u16string_view text) noexcept {
  std::uint64_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i, ++count) {
    const bool leads = (text[i] & 0xFC00) == 0xD800;
    if (leads && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00) ++i;
  }
  return count;
}

Place endOf(std::u16string_view text) noexcept {
  Place place;
  for (std::size_t end = findUnit(text, u'\n'); end < text.size(); end = findUnit(text, u'\n')) {
    text.remove_prefix(end + 1);
    ++place.line;
  }
  place.column = countCharacters(text) + 1;
  return place;
}

std::optional<std::u16string_view> LineCursor::next() noexcept {
  if (!more) return std::nullopt;
  const std::size_t end = findUnit(rest, u'\n');
  const std::u16string_view line = rest.substr(0, end);
  more = end < rest.size();
  rest.remove_prefix(more ? end + 1 : end);
  return line;
}

}  // namespace tessera::input
