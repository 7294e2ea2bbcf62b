#include "foundation/json/format.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

#include "fl/i18n/search.hpp"
#include "fl/i18n/ustring.hpp"
#include "fl/i18n/utf16.hpp"
#include "fl/i18n/utf8.hpp"

namespace foundation::json {

namespace {

using fl::i18n::UnitRange;

template <typename Integer>
void appendDigits(std::string& output, Integer number) {
  std::array<char, 24> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
  output.append(buffer.data(), end);
}

// A positive number as 0.DIGITS x 10^point, with as few digits as parse to the same number.
struct ShortestDecimal {
  std::array<char, 24> digits;
  int count = 0;
  int point = 0;
};

template <typename Number>
ShortestDecimal shortestDecimal(Number number) {
  std::array<char, 32> text;
  const char* const end =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific)
          .ptr;
  ShortestDecimal result;
  const char* at = text.data();
  for (; *at != 'e'; ++at) {
    if (*at != '.') {
      result.digits[static_cast<std::size_t>(result.count++)] = *at;
    }
  }
  at += at[1] == '+' ? 2 : 1;
  std::from_chars(at, end, result.point);
  ++result.point;
  return result;
}

void appendPlain(std::string& output, std::string_view digits, int point) {
  const auto count = static_cast<int>(digits.size());
  if (point <= 0) {
    output.append("0.").append(static_cast<std::size_t>(-point), '0').append(digits);
  } else if (point < count) {
    output.append(digits.substr(0, static_cast<std::size_t>(point))).append(1, '.');
    output.append(digits.substr(static_cast<std::size_t>(point)));
  } else {
    output.append(digits).append(static_cast<std::size_t>(point - count), '0');
  }
}

void appendScientific(std::string& output, std::string_view digits, int exponent) {
  output.append(1, digits.front());
  if (digits.size() > 1) {
    output.append(1, '.').append(digits.substr(1));
  }
  output.append(exponent < 0 ? "e-" : "e+");
  appendDigits(output, std::abs(exponent));
}

// ECMAScript's Number::toString has the same bounds for the form without an exponent.
template <typename Number>
void appendPositive(std::string& output, Number number) {
  const ShortestDecimal shortest = shortestDecimal(number);
  const std::string_view digits(shortest.digits.data(), static_cast<std::size_t>(shortest.count));
  if (shortest.point > -6 && shortest.point <= 21) {
    appendPlain(output, digits, shortest.point);
  } else {
    appendScientific(output, digits, shortest.point - 1);
  }
}

template <typename Number>
void appendFloating(std::string& output, Number number) {
  if (!std::isfinite(number)) {
    output.append("null");
  } else if (number == 0) {
    output.append(1, '0');
  } else {
    if (number < 0) {
      output.append(1, '-');
    }
    appendPositive(output, std::abs(number));
  }
}

constexpr std::size_t kShortEscapes = 0x20;
constexpr std::array<char, kShortEscapes> kLetters{0, 0,   0,   0,   0, 0,   0,
                                                   0, 'b', 't', 'n', 0, 'f', 'r'};

// Appends the escape of a unit below U+00A0.
void appendEscape(std::string& output, char16_t unit) {
  constexpr std::string_view kHex = "0123456789abcdef";
  const char letter = unit < kShortEscapes ? kLetters[unit] : static_cast<char>(unit);
  if (letter != 0 && unit < 0x7F) {
    output.append(1, '\\').append(1, letter);
    return;
  }
  output.append("\\u00").append(1, kHex[unit >> 4U]).append(1, kHex[unit & 0xFU]);
}

// Whether the character that begins at byte `at` of UTF-8 is written as an escape. The only such
// characters of two bytes are U+0080 to U+009F, whose first byte is 0xC2.
bool isEscaped(std::string_view text, std::size_t at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte != 0xC2) return byte < 0x20 || byte == '"' || byte == '\\' || byte == 0x7F;
  return at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
}

std::size_t findEscaped(std::string_view text, std::size_t from) {
  while (from < text.size() && !isEscaped(text, from)) ++from;
  return from;
}

std::size_t findEscaped(std::u16string_view text, std::size_t from) {
  return fl::i18n::findAny<UnitRange(0, 0x1F), u'"', u'\\', UnitRange(0x7F, 0x9F)>(text, from);
}

// Appends valid UTF-8. Escaped characters of two bytes are U+0080 to U+009F; the value of their
// second byte is the code point.
void appendValid(std::string& output, std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = findEscaped(text, at);
    output.append(text.substr(at, end - at));
    at = end;
    if (at < text.size()) {
      at += text[at] == '\xC2' ? 1 : 0;
      appendEscape(output, static_cast<unsigned char>(text[at++]));
    }
  }
}

}  // namespace

void appendInteger(std::string& output, std::int64_t number) {
  appendDigits(output, number);
}
void appendInteger(std::string& output, std::uint64_t number) {
  appendDigits(output, number);
}

void appendNumber(std::string& output, double number) {
  appendFloating(output, number);
}
void appendNumber(std::string& output, float number) {
  appendFloating(output, number);
}

void appendCanonicalNumber(std::string& output, double number) {
  if (number == 0) {
    output.append(std::signbit(number) ? "-0.0" : "0.0");
    return;
  }
  const std::size_t start = output.size();
  appendFloating(output, number);
  if (std::isfinite(number) && output.find_first_of(".e", start) == std::string::npos) {
    output.append(".0");
  }
}

void appendQuoted(std::string& output, std::u16string_view text) {
  output.append(1, '"');
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = findEscaped(text, at);
    fl::i18n::appendUtf8(output, text.substr(at, end - at));
    at = end;
    if (at < text.size()) appendEscape(output, text[at++]);
  }
  output.append(1, '"');
}

void appendQuoted(std::string& output, std::string_view utf8) {
  if (fl::i18n::findInvalidUtf8(utf8)) {
    appendQuoted(output, fl::i18n::utf8_to_ustring(utf8));
    return;
  }
  output.append(1, '"');
  appendValid(output, utf8);
  output.append(1, '"');
}

void appendCanonicalQuoted(std::string& output, std::string_view utf8) {
  output.append(1, '"');
  for (const char byte : utf8) {
    const auto unit = static_cast<unsigned char>(byte);
    if (unit < 0x20 || byte == '"' || byte == '\\') {
      appendEscape(output, unit);
    } else {
      output.append(1, byte);
    }
  }
  output.append(1, '"');
}

}  // namespace foundation::json
