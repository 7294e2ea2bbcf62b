#pragma once

#include <cstddef>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace quenlith::build::markup::code {

/// Tells whether `line` is plain text as it stands: holds neither "<@", without which there is no
/// marker, nor "%\\", without which there is no escaped leader. Most lines are.
inline bool isPlainLine(std::u16string_view line) noexcept {
  const auto isPlainPair = [](char16_t first, char16_t second) {
    return !(first == u'<' && second == u'@') && !(first == u'%' && second == u'\\');
  };
  std::size_t at = 0;
#ifdef __SSE2__
  // Eight pairs at a time; the last eight may reach back over pairs that were looked at.
  constexpr std::size_t kBlock = 8;
  if (line.size() > kBlock) {
    const std::size_t last = line.size() - kBlock - 1;
    const auto is = [](__m128i units, char16_t unit) {
      return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(unit)));
    };
    for (;; at += kBlock) {
      at = at < last ? at : last;
      const auto* units = reinterpret_cast<const __m128i*>(line.data() + at);
      const auto* behind = reinterpret_cast<const __m128i*>(line.data() + at + 1);
      const __m128i first = _mm_loadu_si128(units);
      const __m128i second = _mm_loadu_si128(behind);
      const __m128i opening = _mm_and_si128(is(first, u'<'), is(second, u'@'));
      const __m128i escape = _mm_and_si128(is(first, u'%'), is(second, u'\\'));
      if (_mm_movemask_epi8(_mm_or_si128(opening, escape)) != 0) return false;
      if (at == last) return true;
    }
  }
#endif
  for (; at + 1 < line.size(); ++at) {
    if (!isPlainPair(line[at], line[at + 1])) return false;
  }
  return true;
}

}  // namespace quenlith::build::markup::code
