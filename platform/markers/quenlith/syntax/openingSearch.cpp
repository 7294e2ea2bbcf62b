#include "quenlith/syntax/openingSearch.hpp"

#include <atomic>
#include <cstdint>

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace quenlith::syntax {

std::size_t findOpeningPlain(std::u16string_view text, std::size_t from) noexcept {
  for (std::size_t at = from; at + 1 < text.size(); ++at) {
    if (text[at] == u'<' && text[at + 1] == u'@') {
      return at;
    }
  }
  return std::u16string_view::npos;
}

#ifdef __x86_64__

namespace {

// A block of eight places needs nine units: each place is tested with the unit behind it.
constexpr std::size_t kBlock128 = 8;
constexpr std::size_t kBlock256 = 16;

__m128i pairs128(const char16_t* units) {
  const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
  const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + 1));
  return _mm_and_si128(_mm_cmpeq_epi16(first, _mm_set1_epi16(u'<')),
                       _mm_cmpeq_epi16(second, _mm_set1_epi16(u'@')));
}

// The place that the lowest bit of a mask of two bits a place names.
std::size_t placeOf(unsigned mask) {
  return static_cast<unsigned>(__builtin_ctz(mask)) / 2;
}

std::size_t findOpening128(std::u16string_view text, std::size_t from) noexcept {
  if (text.size() - from <= kBlock128) {
    return findOpeningPlain(text, from);
  }
  const std::size_t last = text.size() - kBlock128 - 1;
  for (std::size_t at = from;; at += kBlock128) {
    // The last block may reach back over places that are known to hold nothing.
    at = at < last ? at : last;
    const auto mask = static_cast<unsigned>(_mm_movemask_epi8(pairs128(text.data() + at)));
    if (mask != 0) {
      return at + placeOf(mask);
    }
    if (at == last) {
      return std::u16string_view::npos;
    }
  }
}

__attribute__((target("avx2"))) __m256i pairs256(const char16_t* units) {
  const __m256i first = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units));
  const __m256i second = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units + 1));
  return _mm256_and_si256(_mm256_cmpeq_epi16(first, _mm256_set1_epi16(u'<')),
                          _mm256_cmpeq_epi16(second, _mm256_set1_epi16(u'@')));
}

// Two blocks a turn; which of them holds the pair is left to the narrow search.
__attribute__((target("avx2"))) std::size_t findOpening256(std::u16string_view text,
                                                           std::size_t from) noexcept {
  std::size_t at = from;
  while (text.size() - at > 2 * kBlock256) {
    const __m256i low = pairs256(text.data() + at);
    const __m256i high = pairs256(text.data() + at + kBlock256);
    if (_mm256_movemask_epi8(_mm256_or_si256(low, high)) != 0) {
      break;
    }
    at += 2 * kBlock256;
  }
  return findOpening128(text, at);
}

// Below this the wide search cannot make up for the indirect call.
constexpr std::size_t kShort = 64;

std::size_t findFirstTime(std::u16string_view text, std::size_t from) noexcept;

// Relaxed: whichever value a thread sees, it is a search that gives the same result.
std::atomic<OpeningSearch> longSearch{&findFirstTime};

std::size_t findFirstTime(std::u16string_view text, std::size_t from) noexcept {
  const OpeningSearch chosen = openingSearch(widestVectors());
  longSearch.store(chosen, std::memory_order_relaxed);
  return chosen(text, from);
}

}  // namespace

std::size_t findOpening(std::u16string_view text, std::size_t from) noexcept {
  if (text.size() - from < kShort) {
    return findOpening128(text, from);
  }
  return longSearch.load(std::memory_order_relaxed)(text, from);
}

VectorWidth widestVectors() noexcept {
  return __builtin_cpu_supports("avx2") != 0 ? VectorWidth::k256 : VectorWidth::k128;
}

OpeningSearch openingSearch(VectorWidth width) noexcept {
  switch (width) {
    case VectorWidth::k256:
      return &findOpening256;
    case VectorWidth::k128:
      return &findOpening128;
    default:
      return &findOpeningPlain;
  }
}

#else

std::size_t findOpening(std::u16string_view text, std::size_t from) noexcept {
  return findOpeningPlain(text, from);
}

VectorWidth widestVectors() noexcept {
  return VectorWidth::kNone;
}

OpeningSearch openingSearch(VectorWidth) noexcept {
  return &findOpeningPlain;
}

#endif

}  // namespace quenlith::syntax
