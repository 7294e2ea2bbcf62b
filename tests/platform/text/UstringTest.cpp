#include "fl/i18n/ustring.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "TextTwin.hpp"
#include "support/FailingAllocations.hpp"

namespace fl::i18n {
namespace {

using namespace std::string_literals;

struct Utf8Case {
  std::string bytes;
  ustring text;
};

// The table of the Unicode standard on U+FFFD substitution of maximal subparts, each kind of
// ill-formed sequence, and the limits of every length.
const std::vector<Utf8Case> kUtf8Cases{
    {"", u""},
    {"plain", u"plain"},
    {"\0"s, u"\0"s},
    {"\xC2\x80\xDF\xBF", u"\u0080\u07FF"},
    {"\xE0\xA0\x80\xEF\xBF\xBF", u"\u0800\uFFFF"},
    {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
    // Lone continuation bytes and bytes that are never valid: one U+FFFD for each byte.
    {"\x80\xBF", u"\uFFFD\uFFFD"},
    {"\xC0\xAF\xC1\xFF\xF5", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
    // Overlong forms: one U+FFFD for each byte.
    {"\xE0\x80\xBF\xF0\x81\x82\x41", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\u0041"},
    // Surrogates and code points above U+10FFFF.
    {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
    {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA\uFFFD\uFFFDB"},
    // A truncated sequence is one U+FFFD.
    {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", u"\uFFFD\uFFFD\uFFFD\uFFFDA"},
    {"\xC3", u"\uFFFD"},
    {"\xE2\x82", u"\uFFFD"},
    {"\xF0\x9F\x98", u"\uFFFD"},
};

TEST(Utf8ToUstring, ReplacesEachIllFormedSequence) {
  for (const auto& [bytes, text] : kUtf8Cases) {
    EXPECT_EQ(utf8_to_ustring(bytes), text) << testing::PrintToString(bytes);
  }
}

struct Utf16Case {
  ustring text;
  std::string bytes;
};

const std::vector<Utf16Case> kUtf16Cases{
    {u"", ""},
    {u"plain", "plain"},
    {u"\0"s, "\0"s},
    {u"\u007F\u0080\u07FF\u0800\uFFFF", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
    {u"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
    // An unpaired surrogate at any position is one U+FFFD.
    {{0xD83D}, "\xEF\xBF\xBD"},
    {{0xDE00, 0xD83D}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
    {{0xD83D, u'a'}, "\xEF\xBF\xBD\x61"},
    {{0xD83D, 0xD83D, 0xDE00}, "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
};

TEST(UstringToUtf8, ReplacesEachUnpairedSurrogate) {
  for (const auto& [text, bytes] : kUtf16Cases) {
    EXPECT_EQ(ustring_to_utf8(text), bytes);
  }
}

TEST(UstringToUtf8, NeverHasFewerBytesThanTheTextHasUnits) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const ustring text(3, static_cast<char16_t>(unit));
    ASSERT_GE(ustring_to_utf8(text).size(), text.size()) << unit;
  }
  EXPECT_EQ(ustring_to_utf8(u"\U0001F600").size(), 4U);
}

// Long texts are converted in parts; the boundary of a part must not split a character.
TEST(Ustring, CharactersAcrossTheCutOfALongTextStayWhole) {
  for (const ustring character : {u"\u00E9", u"\u20AC", u"\U0001F600"}) {
    for (std::size_t before = 500; before < 530; ++before) {
      const ustring text = ustring(before, u'a') + character + ustring(2000, u'b');
      ASSERT_EQ(utf8_to_ustring(ustring_to_utf8(text)), text) << before;
    }
    for (std::size_t before = 1010; before < 1030; ++before) {
      const ustring text = ustring(before, u'a') + character + ustring(2000, u'b');
      ASSERT_EQ(utf8_to_ustring(ustring_to_utf8(text)), text) << before;
    }
  }
}

TEST(Ustring, IllFormedSequencesAcrossTheCutAgreeWithIcu) {
  for (const std::string damage :
       {"\x80\x80\x80\x80\x80", "\xF0\x9F\x98\x41", "\xE2\x82\xE2\x82\xAC",
        // Valid sequences followed by stray continuation bytes.
        "\xF4\x89\x89\x89\x89\x89", "\xE2\x82\xAC\x80\x80\x80\x80", "\xC3\xA9\x80\x80\x80"}) {
    for (std::size_t before = 1015; before < 1030; ++before) {
      const std::string bytes = std::string(before, 'a') + damage + std::string(1100, 'b');
      ASSERT_EQ(utf8_to_ustring(bytes), twin::decodeUtf8(bytes).text) << before;
    }
  }
}

TEST(Ustring, RandomTextsAgreeWithIcu) {
  const std::uint64_t seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937_64 random(seed);
  for (int round = 0; round < 50'000; ++round) {
    const std::string bytes = twin::randomBytes(random);
    ASSERT_EQ(utf8_to_ustring(bytes), twin::decodeUtf8(bytes).text)
        << testing::PrintToString(bytes);
    const ustring text = twin::randomUnits(random);
    const std::string utf8 = ustring_to_utf8(text);
    ASSERT_EQ(utf8, twin::encodeUtf8(text));
    ASSERT_GE(utf8.size(), text.size());
  }
}

TEST(Ustring, EveryScalarValueRoundTrips) {
  for (char32_t code = 0; code <= 0x10FFFF; ++code) {
    if (code < 0xD800 || code > 0xDFFF) {
      std::string bytes;
      ustring text;
      if (code < 0x10000) {
        text += static_cast<char16_t>(code);
      } else {
        text += static_cast<char16_t>(0xD7C0 + (code >> 10));
        text += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
      }
      ASSERT_EQ(utf8_to_ustring(ustring_to_utf8(text)), text) << static_cast<unsigned>(code);
    }
  }
}

TEST(Ustring, TextWithOneByteForEachUnitTakesOneAllocation) {
  const std::string bytes(100'000, 'a');
  const std::size_t before = quenlith::test::allocationCount();
  const ustring text = utf8_to_ustring(bytes);
  EXPECT_EQ(quenlith::test::allocationCount() - before, 1U);
  EXPECT_EQ(ustring_to_utf8(text), bytes);
  EXPECT_EQ(quenlith::test::allocationCount() - before, 2U);
}

TEST(Ustring, FailingAllocationsOnlyThrowBadAlloc) {
  const std::string bytes = std::string(3000, 'a') + "\xE2\x82\xAC";
  const ustring text(3000, u'\u20AC');
  const auto nothing = [] {};
  EXPECT_GT(quenlith::test::failEachAllocation([&] { utf8_to_ustring(bytes); }, nothing), 0U);
  EXPECT_GT(quenlith::test::failEachAllocation([&] { ustring_to_utf8(text); }, nothing), 0U);
}

}  // namespace
}  // namespace fl::i18n
