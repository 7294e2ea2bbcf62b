#include "fl/i18n/utf8.hpp"

#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "fl/i18n/utf8Part.hpp"

namespace fl::i18n {

namespace {

using Byte = unsigned char;

// A sequence that begins with a byte that is not ASCII: its code point (U+FFFD when it is
// ill-formed) and its length in bytes, at least 1.
struct Sequence {
  std::uint32_t code = 0xFFFD;
  std::uint32_t length = 1;
  bool valid = false;
};

// What a lead byte determines: the length of the sequence, 1 if the byte cannot begin one, and the
// bounds of the second byte (Unicode standard, table 3-7, well-formed UTF-8 byte sequences).
struct Lead {
  std::uint32_t length;
  Byte low;
  Byte high;
};

Lead leadOf(Byte lead) {
  if (lead < 0xC2 || lead > 0xF4) {
    return {1, 0, 0};
  }
  if (lead < 0xE0) {
    return {2, 0x80, 0xBF};
  }
  if (lead < 0xF0) {
    return {3, lead == 0xE0 ? Byte{0xA0} : Byte{0x80}, lead == 0xED ? Byte{0x9F} : Byte{0xBF}};
  }
  return {4, lead == 0xF0 ? Byte{0x90} : Byte{0x80}, lead == 0xF4 ? Byte{0x8F} : Byte{0xBF}};
}

// An ill-formed sequence is Unicode's "maximal subpart": it ends before the first byte that cannot
// continue it.
Sequence decode(const Byte* in, const Byte* end) {
  const Lead lead = leadOf(*in);
  if (lead.length == 1 || end - in < 2 || in[1] < lead.low || in[1] > lead.high) {
    return {};
  }
  std::uint32_t code = *in & (0x7FU >> lead.length);
  code = (code << 6U) | (in[1] & 0x3FU);
  for (std::uint32_t index = 2; index < lead.length; ++index) {
    if (in + index == end || (in[index] & 0xC0U) != 0x80) {
      return {0xFFFD, index, false};
    }
    code = (code << 6U) | (in[index] & 0x3FU);
  }
  return {code, lead.length, true};
}

char16_t* write(char16_t* out, std::uint32_t code) {
  if (code < 0x10000) {
    *out++ = static_cast<char16_t>(code);
    return out;
  }
  *out++ = static_cast<char16_t>(0xD7C0U + (code >> 10U));
  *out++ = static_cast<char16_t>(0xDC00U + (code & 0x3FFU));
  return out;
}

#ifdef __SSE2__
// The positions of reading and writing.
struct Ascii {
  const Byte* in;
  char16_t* out;
};

// Writes bytes as units up to the first byte that is not ASCII, or until fewer than sixteen are
// left. A block is stored whole even if only its first bytes are ASCII: `out` has room, because a
// text never has more units than bytes.
Ascii widenAscii(const Byte* in, const Byte* end, char16_t* out) {
  const __m128i zero = _mm_setzero_si128();
  while (end - in >= 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(bytes, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(bytes, zero));
    const auto mask = static_cast<unsigned>(_mm_movemask_epi8(bytes));
    if (mask != 0) {
      const int ascii = __builtin_ctz(mask);
      return {in + ascii, out + ascii};
    }
    in += 16;
    out += 16;
  }
  return {in, out};
}

// Like `widenAscii`, but writes nothing.
const Byte* skipAscii(const Byte* in, const Byte* end) {
  while (end - in >= 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
    const auto mask = static_cast<unsigned>(_mm_movemask_epi8(bytes));
    if (mask != 0) {
      return in + __builtin_ctz(mask);
    }
    in += 16;
  }
  return in;
}
#else
struct Ascii {
  const Byte* in;
  char16_t* out;
};

Ascii widenAscii(const Byte* in, const Byte*, char16_t* out) {
  return {in, out};
}
const Byte* skipAscii(const Byte* in, const Byte*) {
  return in;
}
#endif

const Byte* bytesOf(std::string_view text) {
  return reinterpret_cast<const Byte*>(text.data());
}

}  // namespace

Utf8Part convertUtf8Part(std::string_view text, std::size_t stop, char16_t* output) noexcept {
  const Byte* const begin = bytesOf(text);
  const Byte* const end = begin + text.size();
  const Byte* const stopByte = begin + stop;
  Utf8Part result;
  Ascii at{begin, output};
  while (at.in < stopByte) {
    if (*at.in < 0x80) {
      *at.out++ = *at.in++;
      at = widenAscii(at.in, stopByte, at.out);
      continue;
    }
    const Sequence sequence = decode(at.in, end);
    if (!sequence.valid && !result.firstInvalid) {
      result.firstInvalid = static_cast<std::size_t>(at.in - begin);
    }
    at.out = write(at.out, sequence.code);
    at.in += sequence.length;
  }
  result.bytesRead = static_cast<std::size_t>(at.in - begin);
  result.unitsWritten = static_cast<std::size_t>(at.out - output);
  return result;
}

Utf8Conversion convertUtf8(std::string_view text, char16_t* output) noexcept {
  const Utf8Part whole = convertUtf8Part(text, text.size(), output);
  return {whole.unitsWritten, whole.firstInvalid};
}

std::optional<std::size_t> findInvalidUtf8(std::string_view text) noexcept {
  const Byte* const begin = bytesOf(text);
  const Byte* const end = begin + text.size();
  const Byte* in = begin;
  while (in != end) {
    if (*in < 0x80) {
      in = skipAscii(in + 1, end);
      continue;
    }
    const Sequence sequence = decode(in, end);
    if (!sequence.valid) {
      return static_cast<std::size_t>(in - begin);
    }
    in += sequence.length;
  }
  return std::nullopt;
}

}  // namespace fl::i18n
