#pragma once

#include <cstddef>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace quenlith::build::markup::code::line {

/// What stands in a line that makes it more than plain text.
struct LineContent {
  /// "<@", without which there is no marker.
  bool opening = false;
  /// "%\\", without which there is no escaped leader.
  bool escape = false;

  bool isPlain() const noexcept { return !opening && !escape; }
};

/// Looks for both in `line`.
LineContent lookInto(std::u16string_view line) noexcept;

/// Tells that `line` holds neither "@" nor "\\", as most lines do, and so nothing but plain text.
inline bool isSurelyPlain(std::u16string_view line) noexcept {
#ifdef __SSE2__
  constexpr std::size_t kBlock = 8;
  if (line.size() >= kBlock) {
    const auto find = [line](std::size_t place) {
      const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(line.data() + place));
      return _mm_or_si128(_mm_cmpeq_epi16(units, _mm_set1_epi16('@')),
                          _mm_cmpeq_epi16(units, _mm_set1_epi16('\\')));
    };
    // The last block may reach back over others.
    const std::size_t last = line.size() - kBlock;
    __m128i found = find(last);
    for (std::size_t at = 0; at < last; at += kBlock) found = _mm_or_si128(found, find(at));
    return _mm_movemask_epi8(found) == 0;
  }
#endif
  for (const char16_t unit : line) {
    if (unit == u'@' || unit == u'\\') return false;
  }
  return true;
}

}  // namespace quenlith::build::markup::code::line
