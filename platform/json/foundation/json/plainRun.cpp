#include "foundation/json/plainRun.hpp"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace foundation::json {

namespace {

enum class Stops { kReading, kWriting };

template <Stops stops>
bool isPlain(char16_t unit) {
  const bool inString = unit >= 0x20 && unit != u'"' && unit != u'\\';
  return inString && (stops == Stops::kReading || unit < 0x7F || unit > 0x9F);
}

#ifdef __SSE2__
// Bits of the units that end a run, two a unit.
template <Stops stops>
unsigned stopMask(const char16_t* units) {
  const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
  const __m128i zero = _mm_setzero_si128();
  __m128i found = _mm_cmpeq_epi16(_mm_subs_epu16(block, _mm_set1_epi16(0x1F)), zero);
  found = _mm_or_si128(found, _mm_cmpeq_epi16(block, _mm_set1_epi16(u'"')));
  found = _mm_or_si128(found, _mm_cmpeq_epi16(block, _mm_set1_epi16(u'\\')));
  if constexpr (stops == Stops::kWriting) {
    const __m128i fromDelete = _mm_sub_epi16(block, _mm_set1_epi16(0x7F));
    found = _mm_or_si128(found,
                         _mm_cmpeq_epi16(_mm_subs_epu16(fromDelete, _mm_set1_epi16(0x20)), zero));
  }
  return static_cast<unsigned>(_mm_movemask_epi8(found));
}

template <Stops stops>
std::size_t skipBlocks(std::u16string_view text, std::size_t at) {
  while (text.size() - at >= 8) {
    const unsigned mask = stopMask<stops>(text.data() + at);
    if (mask != 0) {
      return at + static_cast<unsigned>(__builtin_ctz(mask)) / 2;
    }
    at += 8;
  }
  return at;
}

// Copies sixteen units as bytes and returns the bits of those that end the run, one a unit.
unsigned copySixteen(const char16_t* units, char* output) {
  const auto* blocks = reinterpret_cast<const __m128i*>(units);
  // A unit above U+00FF becomes 00 or FF, and all bytes from 80 are negative.
  const __m128i bytes = _mm_packus_epi16(_mm_loadu_si128(blocks), _mm_loadu_si128(blocks + 1));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(output), bytes);
  __m128i found = _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20));
  found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(0x7F)));
  found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')));
  found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')));
  return static_cast<unsigned>(_mm_movemask_epi8(found));
}

// Copies up to the end of a run or until fewer than sixteen units are left.
std::size_t copyBlocks(std::u16string_view text, char* output) {
  std::size_t at = 0;
  for (; text.size() - at >= 16; at += 16) {
    const unsigned mask = copySixteen(text.data() + at, output + at);
    if (mask != 0) {
      return at + static_cast<unsigned>(__builtin_ctz(mask));
    }
  }
  return at;
}
#else
std::size_t copyBlocks(std::u16string_view, char*) {
  return 0;
}

template <Stops stops>
std::size_t skipBlocks(std::u16string_view, std::size_t at) {
  return at;
}
#endif

template <Stops stops>
std::size_t runEnd(std::u16string_view text, std::size_t at) {
  at = skipBlocks<stops>(text, at);
  while (at < text.size() && isPlain<stops>(text[at])) {
    ++at;
  }
  return at;
}

// Whether an escape is due at a byte of UTF-8.
bool isEscaped(std::string_view text, std::size_t at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte != 0xC2) {
    return !isPlain<Stops::kReading>(byte) || byte == 0x7F;
  }
  return at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
}

}  // namespace

std::size_t plainRunEnd(std::u16string_view text, std::size_t from) noexcept {
  return runEnd<Stops::kReading>(text, from);
}

std::size_t writableRunEnd(std::u16string_view text, std::size_t from) noexcept {
  return runEnd<Stops::kWriting>(text, from);
}

std::size_t writableRunEnd(std::string_view text, std::size_t from) noexcept {
  while (from < text.size() && !isEscaped(text, from)) {
    ++from;
  }
  return from;
}

std::size_t copyPlainAscii(std::u16string_view text, char* output) noexcept {
  std::size_t at = copyBlocks(text, output);
  for (; at < text.size() && text[at] < 0x7F && isPlain<Stops::kWriting>(text[at]); ++at) {
    output[at] = static_cast<char>(text[at]);
  }
  return at;
}

}  // namespace foundation::json
