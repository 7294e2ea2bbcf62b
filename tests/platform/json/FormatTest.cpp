#include "foundation/json/format.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/parse.hpp"

namespace foundation::json {
namespace {

template <typename Append, typename Argument>
std::string written(Append append, Argument argument) {
  std::string output = "<";
  append(output, argument);
  return output.substr(1);
}

std::string number(double value) {
  return written([](std::string& out, double held) { appendNumber(out, held); }, value);
}
std::string floatNumber(float value) {
  return written([](std::string& out, float held) { appendNumber(out, held); }, value);
}
std::string canonical(double value) {
  return written(appendCanonicalNumber, value);
}
std::string quotedText(std::u16string_view text) {
  return written([](std::string& out, std::u16string_view held) { appendQuoted(out, held); }, text);
}
std::string quotedUtf8(std::string_view text) {
  return written([](std::string& out, std::string_view held) { appendQuoted(out, held); }, text);
}

struct NumberCase {
  double value;
  std::string ecma;
  std::string canonical;
};

// The first two columns are what an ECMAScript engine prints.
const std::vector<NumberCase> kNumbers{
    {0.0, "0", "0.0"},
    {-0.0, "0", "-0.0"},
    {1.0, "1", "1.0"},
    {-1.0, "-1", "-1.0"},
    {1.5, "1.5", "1.5"},
    {100.0, "100", "100.0"},
    {0.1, "0.1", "0.1"},
    {123.456, "123.456", "123.456"},
    {0.000001, "0.000001", "0.000001"},
    {0.00000123, "0.00000123", "0.00000123"},
    {1e-7, "1e-7", "1e-7"},
    {-1.5e-7, "-1.5e-7", "-1.5e-7"},
    {1e20, "100000000000000000000", "100000000000000000000.0"},
    {123456789012345680000.0, "123456789012345680000", "123456789012345680000.0"},
    {1e21, "1e+21", "1e+21"},
    {1.5e21, "1.5e+21", "1.5e+21"},
    {999999999999999900000.0, "999999999999999900000", "999999999999999900000.0"},
    {18446744073709551616.0, "18446744073709552000", "18446744073709552000.0"},
    {5e-324, "5e-324", "5e-324"},
    {1.7976931348623157e308, "1.7976931348623157e+308", "1.7976931348623157e+308"},
    {4.35, "4.35", "4.35"},
    {1e100, "1e+100", "1e+100"},
    {9007199254740993.0, "9007199254740992", "9007199254740992.0"},
};

TEST(WriteNumber, HasTheEcmaScriptFormat) {
  for (const auto& [value, ecma, canonicalText] : kNumbers) {
    EXPECT_EQ(number(value), ecma);
    EXPECT_EQ(canonical(value), canonicalText);
  }
}

TEST(WriteNumber, NanAndInfinityAreNull) {
  EXPECT_EQ(number(std::numeric_limits<double>::quiet_NaN()), "null");
  EXPECT_EQ(number(-std::numeric_limits<double>::infinity()), "null");
  EXPECT_EQ(floatNumber(std::numeric_limits<float>::infinity()), "null");
  EXPECT_EQ(canonical(std::numeric_limits<double>::quiet_NaN()), "null");
}

TEST(WriteNumber, FloatsHaveTheDigitsOfAFloat) {
  EXPECT_EQ(floatNumber(0.1F), "0.1");
  EXPECT_EQ(floatNumber(-16777216.0F), "-16777216");
  EXPECT_EQ(floatNumber(3.4028235e38F), "3.4028235e+38");
  EXPECT_EQ(floatNumber(1e-45F), "1e-45");
}

TEST(WriteNumber, IntegersArePlainDigits) {
  EXPECT_EQ(written([](std::string& out, std::int64_t held) { appendInteger(out, held); },
                    std::numeric_limits<std::int64_t>::min()),
            "-9223372036854775808");
  EXPECT_EQ(written([](std::string& out, std::uint64_t held) { appendInteger(out, held); },
                    std::numeric_limits<std::uint64_t>::max()),
            "18446744073709551615");
}

// Any finite double in canonical form is read back as the same double.
TEST(WriteNumber, CanonicalDoublesReadBack) {
  const std::uint64_t seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937_64 random(seed);
  for (int round = 0; round < 100'000; ++round) {
    const std::uint64_t bits = random();
    const auto value = std::bit_cast<double>(bits);
    if (!std::isfinite(value)) {
      continue;
    }
    const std::string text = canonical(value);
    const auto read = parse(fl::i18n::utf8_to_ustring(text));
    ASSERT_TRUE(read.value && read.value->is<double>()) << text;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(read.value->get<double>()), bits) << text;
    ASSERT_EQ(std::strtod(number(value).c_str(), nullptr), value) << text;
  }
}

TEST(WriteText, EscapesTheQuoteTheBackslashAndControlCharacters) {
  std::u16string text;
  std::string expected = "\"";
  for (char16_t unit = 0; unit < 0xA2; ++unit) {
    text += unit;
    const std::string plain = fl::i18n::ustring_to_utf8({&unit, 1});
    constexpr std::string_view kHex = "0123456789abcdef";
    switch (unit) {
      case u'"':
        expected += "\\\"";
        break;
      case u'\\':
        expected += "\\\\";
        break;
      case u'\b':
        expected += "\\b";
        break;
      case u'\f':
        expected += "\\f";
        break;
      case u'\n':
        expected += "\\n";
        break;
      case u'\r':
        expected += "\\r";
        break;
      case u'\t':
        expected += "\\t";
        break;
      default:
        expected += unit < 0x20 || (unit >= 0x7F && unit <= 0x9F)
                        ? std::string("\\u00") + kHex[unit >> 4] + kHex[unit & 15]
                        : plain;
    }
  }
  expected += "\"";
  EXPECT_EQ(quotedText(text), expected);
  EXPECT_EQ(quotedUtf8(fl::i18n::ustring_to_utf8(text)), expected);
}

// The two forms of a text are escaped alike, wherever the character is.
TEST(WriteText, Utf8IsEscapedLikeUtf16) {
  for (char16_t unit = 0; unit < 0x200; ++unit) {
    const std::u16string character(1, unit);
    for (const std::u16string& text : {character, character + u"x", u"x" + character,
                                       u"\u00C2" + character, character + character}) {
      ASSERT_EQ(quotedUtf8(fl::i18n::ustring_to_utf8(text)), quotedText(text)) << int{unit};
    }
  }
}

TEST(WriteText, IllFormedTextGetsReplacementCharacters) {
  EXPECT_EQ(quotedText(std::u16string{u'a', 0xD83D, u'"', 0xDE00}),
            "\"a\xEF\xBF\xBD\\\"\xEF\xBF\xBD\"");
  EXPECT_EQ(quotedUtf8("a\xFF\x80\xC2"), "\"a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\"");
  EXPECT_EQ(quotedUtf8("a\xC2\n"), "\"a\xEF\xBF\xBD\\n\"");
}

TEST(WriteText, EmptyAndLongTexts) {
  EXPECT_EQ(quotedText(u""), "\"\"");
  EXPECT_EQ(quotedUtf8(""), "\"\"");
  const std::u16string text = std::u16string(3000, u'\u20AC') + u"\"";
  EXPECT_EQ(quotedText(text).size(), 3000U * 3 + 4);
}

TEST(WriteText, CanonicalTextEscapesOnlyWhatJsonRequires) {
  EXPECT_EQ(written(appendCanonicalQuoted,
                    std::string_view("\"\\\b\f\n\r\t\x01\x1F\x7F\xC2\x80/\xC3\xA9")),
            "\"\\\"\\\\\\b\\f\\n\\r\\t\\u0001\\u001f\x7F\xC2\x80/\xC3\xA9\"");
}

}  // namespace
}  // namespace foundation::json
