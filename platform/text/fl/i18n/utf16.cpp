#include "fl/i18n/utf16.hpp"

#include <algorithm>
#include <array>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace fl::i18n {

namespace {

constexpr std::size_t kChunkUnits = 512;

bool isHighSurrogate(char16_t unit) {
  return (unit & 0xFC00) == 0xD800;
}
bool isLowSurrogate(char16_t unit) {
  return (unit & 0xFC00) == 0xDC00;
}
bool isSurrogate(char16_t unit) {
  return (unit & 0xF800) == 0xD800;
}

char byteOf(std::uint32_t bits) {
  return static_cast<char>(static_cast<unsigned char>(bits));
}

char* writeTwoBytes(char* out, char16_t unit) {
  *out++ = byteOf(0xC0U | (unit >> 6U));
  *out++ = byteOf(0x80U | (unit & 0x3FU));
  return out;
}

char* writeThreeBytes(char* out, char16_t unit) {
  *out++ = byteOf(0xE0U | (unit >> 12U));
  *out++ = byteOf(0x80U | ((unit >> 6U) & 0x3FU));
  *out++ = byteOf(0x80U | (unit & 0x3FU));
  return out;
}

char* writePair(char* out, char16_t high, char16_t low) {
  const std::uint32_t code = 0x10000U + ((high & 0x3FFU) << 10U) + (low & 0x3FFU);
  *out++ = byteOf(0xF0U | (code >> 18U));
  *out++ = byteOf(0x80U | ((code >> 12U) & 0x3FU));
  *out++ = byteOf(0x80U | ((code >> 6U) & 0x3FU));
  *out++ = byteOf(0x80U | (code & 0x3FU));
  return out;
}

// The positions of reading and writing. The output needs no end: it has room for three bytes per
// unit, and a unit never needs more.
struct Cursor {
  const char16_t* in;
  const char16_t* end;
  char* out;
};

void convertOne(Cursor& cursor) {
  const char16_t unit = *cursor.in++;
  if (unit < 0x80) {
    *cursor.out++ = static_cast<char>(unit);
  } else if (unit < 0x800) {
    cursor.out = writeTwoBytes(cursor.out, unit);
  } else if (!isSurrogate(unit)) {
    cursor.out = writeThreeBytes(cursor.out, unit);
  } else if (isHighSurrogate(unit) && cursor.in != cursor.end && isLowSurrogate(*cursor.in)) {
    cursor.out = writePair(cursor.out, unit, *cursor.in++);
  } else {
    cursor.out = writeThreeBytes(cursor.out, u'\uFFFD');
  }
}

#ifdef __SSE2__
// Converts sixteen units at a time until a block is not all ASCII.
void convertAscii(Cursor& cursor) {
  const __m128i limit = _mm_set1_epi16(static_cast<short>(0xFF80));
  while (cursor.end - cursor.in >= 16) {
    const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cursor.in));
    const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cursor.in + 8));
    const __m128i high = _mm_and_si128(_mm_or_si128(first, second), limit);
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) != 0xFFFF) {
      return;
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cursor.out), _mm_packus_epi16(first, second));
    cursor.in += 16;
    cursor.out += 16;
  }
}
#else
void convertAscii(Cursor&) {}
#endif

// Converts the next sixteen units one by one, so that text without ASCII blocks does not pay for a
// vector test per unit.
void convertBlock(Cursor& cursor) {
  const char16_t* stop = cursor.in + std::min<std::ptrdiff_t>(16, cursor.end - cursor.in);
  while (cursor.in < stop) {
    convertOne(cursor);
  }
}

// Does not separate the halves of a surrogate pair.
std::size_t chunkLength(std::u16string_view text) {
  if (text.size() <= kChunkUnits) {
    return text.size();
  }
  return isHighSurrogate(text[kChunkUnits - 1]) ? kChunkUnits - 1 : kChunkUnits;
}

}  // namespace

std::size_t convertUtf16(std::u16string_view text, char* output) noexcept {
  Cursor cursor{text.data(), text.data() + text.size(), output};
  while (cursor.in != cursor.end) {
    convertAscii(cursor);
    convertBlock(cursor);
  }
  return static_cast<std::size_t>(cursor.out - output);
}

void appendUtf8(std::string& output, std::u16string_view text) {
  std::array<char, kChunkUnits * kMaxUtf8BytesPerUnit> buffer;
  while (!text.empty()) {
    const std::size_t length = chunkLength(text);
    output.append(buffer.data(), convertUtf16(text.substr(0, length), buffer.data()));
    text.remove_prefix(length);
  }
}

}  // namespace fl::i18n
