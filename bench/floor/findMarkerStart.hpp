#pragma once

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <string_view>

namespace bench::floor {

/// Returns the position of the first "<@" in `text`, or the size of `text` if there is none.
/// Compares eight code units at a time.
inline std::size_t findMarkerStart(std::u16string_view text) noexcept {
  const __m128i less = _mm_set1_epi16(u'<');
  const __m128i at = _mm_set1_epi16(u'@');
  const auto load = [&text](std::size_t place) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + place));
  };
  std::size_t place = 0;
  for (; place + 9 <= text.size(); place += 8) {
    const __m128i both =
        _mm_and_si128(_mm_cmpeq_epi16(load(place), less), _mm_cmpeq_epi16(load(place + 1), at));
    const auto mask = static_cast<unsigned>(_mm_movemask_epi8(both));
    if (mask != 0) return place + static_cast<std::size_t>(std::countr_zero(mask)) / 2;
  }
  for (; place + 1 < text.size(); ++place) {
    if (text[place] == u'<' && text[place + 1] == u'@') return place;
  }
  return text.size();
}

}  // namespace bench::floor
