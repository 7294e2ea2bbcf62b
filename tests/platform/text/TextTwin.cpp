#include "TextTwin.hpp"

#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <array>
#include <stdexcept>

// ICU's macros narrow implicitly and use C-style casts.
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace fl::i18n::twin {

namespace {

constexpr UChar32 kReplacement = 0xFFFD;

void requireSuccess(UErrorCode status) {
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
}

void appendCode(std::string& bytes, char32_t code) {
  std::array<char, U8_MAX_LENGTH> buffer{};
  std::int32_t length = 0;
  U8_APPEND_UNSAFE(buffer, length, static_cast<UChar32>(code));
  bytes.append(buffer.data(), static_cast<std::size_t>(length));
}

void appendUnits(std::u16string& text, char32_t code) {
  std::array<char16_t, U16_MAX_LENGTH> buffer{};
  std::int32_t length = 0;
  U16_APPEND_UNSAFE(buffer, length, static_cast<UChar32>(code));
  text.append(buffer.data(), static_cast<std::size_t>(length));
}

// U8_NEXT gives a negative code point for an ill-formed sequence.
std::optional<std::size_t> findIllFormed(std::string_view bytes) {
  const auto size = static_cast<std::int32_t>(bytes.size());
  for (std::int32_t at = 0; at < size;) {
    const auto begin = static_cast<std::size_t>(at);
    UChar32 code = 0;
    U8_NEXT(bytes.data(), at, size, code);
    if (code < 0) return begin;
  }
  return std::nullopt;
}

std::size_t below(std::mt19937_64& random, std::size_t limit) {
  return random() % limit;
}

// Characters of each length in UTF-8, and the limits of each length.
constexpr std::array<char32_t, 16> kCodes{0x0,     0x41,    0x7F,    0x80,    0xE9,   0x7FF,
                                          0x800,   0x20AC,  0xD7FF,  0xE000,  0xFFFD, 0xFFFF,
                                          0x10000, 0x1F600, 0xFFFFF, 0x10FFFF};

constexpr std::array<unsigned char, 20> kBytes{0x00, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0,
                                               0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xED,
                                               0xEF, 0xF0, 0xF1, 0xF4, 0xF5, 0xFF};

}  // namespace

Decoded decodeUtf8(std::string_view bytes) {
  // There are never more units than bytes.
  std::u16string text(bytes.size(), u'\0');
  std::int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8WithSub(text.data(), static_cast<std::int32_t>(text.size()), &length, bytes.data(),
                       static_cast<std::int32_t>(bytes.size()), kReplacement, nullptr, &status);
  requireSuccess(status);
  text.resize(static_cast<std::size_t>(length));
  return {text, findIllFormed(bytes)};
}

std::string encodeUtf8(std::u16string_view text) {
  constexpr std::size_t kMostBytesPerUnit = 3;
  std::string bytes(text.size() * kMostBytesPerUnit, '\0');
  std::int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strToUTF8WithSub(bytes.data(), static_cast<std::int32_t>(bytes.size()), &length, text.data(),
                     static_cast<std::int32_t>(text.size()), kReplacement, nullptr, &status);
  requireSuccess(status);
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}

std::string randomBytes(std::mt19937_64& random) {
  std::string bytes;
  for (std::size_t part = below(random, 12); part > 0; --part) {
    switch (below(random, 4)) {
      case 0:
        bytes.append(below(random, 40), 'a');
        break;
      case 1:
        bytes += static_cast<char>(kBytes[below(random, kBytes.size())]);
        break;
      case 2:
        appendCode(bytes, kCodes[below(random, kCodes.size())]);
        break;
      default:
        appendCode(bytes, kCodes[below(random, kCodes.size())]);
        bytes.resize(bytes.size() - below(random, bytes.size() + 1) % 4 % (bytes.size() + 1));
    }
  }
  return bytes;
}

std::u16string randomUnits(std::mt19937_64& random) {
  std::u16string text;
  for (std::size_t part = below(random, 12); part > 0; --part) {
    switch (below(random, 3)) {
      case 0:
        text.append(below(random, 40), u'a');
        break;
      case 1:
        text += static_cast<char16_t>(0xD800 + below(random, 0x800));
        break;
      default:
        appendUnits(text, kCodes[below(random, kCodes.size())]);
    }
  }
  return text;
}

}  // namespace fl::i18n::twin
