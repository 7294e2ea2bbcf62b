#pragma once

#include <cstddef>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace quenlith::build::markup::code {

namespace detail {

#ifdef __SSE2__

inline __m128i unitsAt(std::u16string_view line, std::size_t place) noexcept {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(line.data() + place));
}

inline __m128i are(__m128i units, char16_t unit) noexcept {
  return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(unit)));
}

/// Tells whether `test` finds something in one of the blocks of eight places that begin at the
/// first `places` ones, of which there must be eight; the last block may reach back over others.
template <class Test>
bool anyBlock(std::size_t places, const Test& test) noexcept {
  constexpr std::size_t kBlock = 8;
  const std::size_t last = places - kBlock;
  __m128i found = test(last);
  for (std::size_t at = 0; at < last; at += kBlock) found = _mm_or_si128(found, test(at));
  return _mm_movemask_epi8(found) != 0;
}

#endif

/// Tells whether "@" or "\\" stands in `line`: the second halves of what makes a line more than
/// plain text, and the rarer ones.
inline bool holdsSecondHalf(std::u16string_view line) noexcept {
#ifdef __SSE2__
  if (line.size() >= 8) {
    return anyBlock(line.size(), [line](std::size_t place) {
      const __m128i units = unitsAt(line, place);
      return _mm_or_si128(are(units, u'@'), are(units, u'\\'));
    });
  }
#endif
  for (const char16_t unit : line) {
    if (unit == u'@' || unit == u'\\') return true;
  }
  return false;
}

}  // namespace detail

/// What stands in a line that makes it more than plain text.
struct LineContent {
  /// "<@", without which there is no marker.
  bool opening = false;
  /// "%\\", without which there is no escaped leader.
  bool escape = false;

  bool isPlain() const noexcept { return !opening && !escape; }
};

namespace detail {

inline LineContent findPairs(std::u16string_view line) noexcept {
  LineContent found;
#ifdef __SSE2__
  if (line.size() > 8) {
    __m128i openings = _mm_setzero_si128();
    found.escape = anyBlock(line.size() - 1, [line, &openings](std::size_t place) {
      const __m128i first = unitsAt(line, place);
      const __m128i second = unitsAt(line, place + 1);
      openings = _mm_or_si128(openings, _mm_and_si128(are(first, u'<'), are(second, u'@')));
      return _mm_and_si128(are(first, u'%'), are(second, u'\\'));
    });
    found.opening = _mm_movemask_epi8(openings) != 0;
    return found;
  }
#endif
  for (std::size_t at = 0; at + 1 < line.size(); ++at) {
    found.opening = found.opening || (line[at] == u'<' && line[at + 1] == u'@');
    found.escape = found.escape || (line[at] == u'%' && line[at + 1] == u'\\');
  }
  return found;
}

}  // namespace detail

/// Looks for both in `line`. Most lines have neither.
inline LineContent lookInto(std::u16string_view line) noexcept {
  return detail::holdsSecondHalf(line) ? detail::findPairs(line) : LineContent{};
}

}  // namespace quenlith::build::markup::code
