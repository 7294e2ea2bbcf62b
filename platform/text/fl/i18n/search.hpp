#pragma once

#include <cstddef>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace fl::i18n {

/// The code units from `first` to `last`, both included.
struct UnitRange {
  char16_t first;
  char16_t last;

  // NOLINTNEXTLINE(google-explicit-constructor): most searches are for single units.
  constexpr UnitRange(char16_t unit) noexcept : UnitRange(unit, unit) {}
  constexpr UnitRange(char16_t first, char16_t last) noexcept : first(first), last(last) {}

  constexpr bool contains(char16_t unit) const noexcept { return unit >= first && unit <= last; }
};

namespace detail {

#ifdef __SSE2__

// The number of code units in a vector.
inline constexpr std::size_t kVectorUnits = 8;

// All bits of a lane are set where the unit is in the range.
template <UnitRange range>
__m128i match(__m128i units) noexcept {
  if constexpr (range.first == range.last) {
    return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(range.first)));
  }
  // SSE2 has no unsigned comparison. Units below the range wrap around to a large offset, and the
  // saturating difference is 0 only for offsets up to the limit.
  const __m128i offset = _mm_sub_epi16(units, _mm_set1_epi16(static_cast<short>(range.first)));
  const __m128i limit = _mm_set1_epi16(static_cast<short>(range.last - range.first));
  return _mm_cmpeq_epi16(_mm_subs_epu16(offset, limit), _mm_setzero_si128());
}

inline __m128i load(const char16_t* units) noexcept {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
}

template <UnitRange... ranges>
__m128i matchAny(const char16_t* units) noexcept {
  const __m128i loaded = load(units);
  __m128i found = _mm_setzero_si128();
  ((found = _mm_or_si128(found, match<ranges>(loaded))), ...);
  return found;
}

// One bit for each of the eight units.
template <UnitRange... ranges>
unsigned maskOfEight(const char16_t* units) noexcept {
  const __m128i bytes = _mm_packs_epi16(matchAny<ranges...>(units), _mm_setzero_si128());
  return static_cast<unsigned>(_mm_movemask_epi8(bytes));
}

template <UnitRange... ranges>
unsigned maskOfSixteen(const char16_t* units) noexcept {
  const __m128i bytes =
      _mm_packs_epi16(matchAny<ranges...>(units), matchAny<ranges...>(units + kVectorUnits));
  return static_cast<unsigned>(_mm_movemask_epi8(bytes));
}

inline std::size_t lowestBit(unsigned mask) noexcept {
  return static_cast<unsigned>(__builtin_ctz(mask));
}

// These two return the size of `text` if nothing matches. The last step ends at the end of the text
// and overlaps units that are known not to match, which saves a loop over the remaining units. At
// least as many units as one step reads must follow `from`; `findInEights` takes at most two steps.
template <UnitRange... ranges>
std::size_t findInEights(std::u16string_view text, std::size_t from) noexcept {
  if (const unsigned mask = maskOfEight<ranges...>(text.data() + from)) {
    return from + lowestBit(mask);
  }
  const std::size_t last = text.size() - kVectorUnits;
  const unsigned mask = maskOfEight<ranges...>(text.data() + last);
  return mask != 0 ? last + lowestBit(mask) : text.size();
}

template <UnitRange... ranges>
std::size_t findInSixteens(std::u16string_view text, std::size_t from) noexcept {
  const std::size_t last = text.size() - 2 * kVectorUnits;
  for (std::size_t at = from; at < last; at += 2 * kVectorUnits) {
    if (const unsigned mask = maskOfSixteen<ranges...>(text.data() + at)) {
      return at + lowestBit(mask);
    }
  }
  const unsigned mask = maskOfSixteen<ranges...>(text.data() + last);
  return mask != 0 ? last + lowestBit(mask) : text.size();
}

#endif

}  // namespace detail

/// Returns the position of the first unit of `text` at or after `from` that is in one of the
/// ranges; the size of `text` when there is none. `from` is at most that size.
template <UnitRange... ranges>
std::size_t findAny(std::u16string_view text, std::size_t from = 0) noexcept {
#ifdef __SSE2__
  if (text.size() - from >= 2 * detail::kVectorUnits) {
    return detail::findInSixteens<ranges...>(text, from);
  }
  if (text.size() - from >= detail::kVectorUnits) {
    return detail::findInEights<ranges...>(text, from);
  }
#endif
  while (from < text.size() && !(ranges.contains(text[from]) || ...)) ++from;
  return from;
}

/// Which of two units a text contains.
struct Occurrence {
  bool first = false;
  bool second = false;
};

/// Returns which of the units `first` and `second` occur in `text`.
///
/// Always reads the whole text. Faster than `findAny` for short texts that rarely contain such a
/// unit, because it does not branch on each vector's result. Inlined: a call would cost a plain
/// line 20 of its 730 instructions.
template <char16_t first, char16_t second>
[[gnu::always_inline]] inline Occurrence findOccurrence(std::u16string_view text) noexcept {
#ifdef __SSE2__
  if (text.size() >= detail::kVectorUnits) {
    // The last vector overlaps the one before it, which saves a loop over the remaining units.
    const std::size_t last = text.size() - detail::kVectorUnits;
    const __m128i lastUnits = detail::load(text.data() + last);
    __m128i firsts = detail::match<first>(lastUnits);
    __m128i seconds = detail::match<second>(lastUnits);
    for (std::size_t at = 0; at < last; at += detail::kVectorUnits) {
      const __m128i units = detail::load(text.data() + at);
      firsts = _mm_or_si128(firsts, detail::match<first>(units));
      seconds = _mm_or_si128(seconds, detail::match<second>(units));
    }
    return {_mm_movemask_epi8(firsts) != 0, _mm_movemask_epi8(seconds) != 0};
  }
#endif
  Occurrence found;
  for (const char16_t unit : text) {
    found.first |= unit == first;
    found.second |= unit == second;
  }
  return found;
}

/// Returns the position of the first `first` of `text` at or after `from` that is followed by
/// `second`; the size of `text` when there is none. `from` is at most that size.
///
/// Linear for any text. Fastest when `second` is the rarer unit, since only that is searched for.
template <char16_t first, char16_t second>
std::size_t findPair(std::u16string_view text, std::size_t from = 0) noexcept {
  std::size_t at = findAny<second>(text, from);
  while (at < text.size() && (at == from || text[at - 1] != first)) {
    at = findAny<second>(text, at + 1);
  }
  return at < text.size() ? at - 1 : at;
}

}  // namespace fl::i18n
