#include "quenlith/build/markup/code/line/LineContent.hpp"

namespace quenlith::build::markup::code::line {

namespace {

#ifdef __SSE2__

constexpr std::size_t kBlock = 16;

/// Sixteen units as bytes; those above U+00FF become bytes that are no ASCII character.
__m128i bytesAt(std::u16string_view line, std::size_t place) noexcept {
  const auto* units = reinterpret_cast<const __m128i*>(line.data() + place);
  return _mm_packus_epi16(_mm_loadu_si128(units), _mm_loadu_si128(units + 1));
}

__m128i are(__m128i bytes, char character) noexcept {
  return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(character));
}

/// Of a line with more than kBlock units.
LineContent lookIntoLong(std::u16string_view line) noexcept {
  __m128i openings = _mm_setzero_si128();
  __m128i escapes = _mm_setzero_si128();
  const auto look = [&](std::size_t place) {
    const __m128i first = bytesAt(line, place);
    const __m128i second = bytesAt(line, place + 1);
    openings = _mm_or_si128(openings, _mm_and_si128(are(first, '<'), are(second, '@')));
    escapes = _mm_or_si128(escapes, _mm_and_si128(are(first, '%'), are(second, '\\')));
  };
  // The last block may reach back over others.
  const std::size_t last = line.size() - kBlock - 1;
  look(last);
  for (std::size_t at = 0; at < last; at += kBlock) look(at);
  return {_mm_movemask_epi8(openings) != 0, _mm_movemask_epi8(escapes) != 0};
}

#endif

}  // namespace

LineContent lookInto(std::u16string_view line) noexcept {
#ifdef __SSE2__
  if (line.size() > kBlock) return lookIntoLong(line);
#endif
  return {line.find(u"<@") != line.npos, line.find(u"%\\") != line.npos};
}

}  // namespace quenlith::build::markup::code::line
