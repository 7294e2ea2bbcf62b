#include "tessera/source/lines.hpp"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tessera::source {
namespace {

#ifdef __SSE2__
/// Returns the place of the first `unit` in the whole blocks of eight, or where they end.
std::size_t findInBlocks(std::u16string_view text, char16_t unit) noexcept {
  const __m128i wanted = _mm_set1_epi16(static_cast<short>(unit));
  std::size_t at = 0;
  for (; text.size() - at >= 8; at += 8) {
    const auto* block = reinterpret_cast<const __m128i*>(text.data() + at);
    const __m128i equal = _mm_cmpeq_epi16(_mm_loadu_si128(block), wanted);
    const auto bits = static_cast<unsigned>(_mm_movemask_epi8(equal));
    if (bits != 0) return at + static_cast<unsigned>(__builtin_ctz(bits)) / 2;
  }
  return at;
}
#else
std::size_t findInBlocks(std::u16string_view, char16_t) noexcept {
  return 0;
}
#endif

}  // namespace

std::size_t findUnit(std::u16string_view text, char16_t unit) noexcept {
  std::size_t at = findInBlocks(text, unit);
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

diagnostics::Place endOf(std::u16string_view text) noexcept {
  diagnostics::Place place;
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

}  // namespace tessera::source
