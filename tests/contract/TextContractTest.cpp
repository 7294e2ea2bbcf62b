#include <string>
#include <string_view>
#include <type_traits>

#include <gtest/gtest.h>

#include "fl/i18n/ustring.hpp"

namespace {

using fl::i18n::ustring;
using fl::i18n::ustring_to_utf8;
using fl::i18n::utf8_to_ustring;

static_assert(sizeof(ustring::value_type) == 2);
static_assert(std::is_same_v<ustring, std::u16string>);
static_assert(std::is_same_v<decltype(utf8_to_ustring(std::string_view())), ustring>);
static_assert(std::is_same_v<decltype(ustring_to_utf8(std::u16string_view())), std::string>);

TEST(TextContract, AsciiIsConvertedBothWays) {
  EXPECT_EQ(utf8_to_ustring("x = 1"), u"x = 1");
  EXPECT_EQ(ustring_to_utf8(u"x = 1"), "x = 1");
}

TEST(TextContract, EmptyTextStaysEmpty) {
  EXPECT_EQ(utf8_to_ustring(""), u"");
  EXPECT_EQ(ustring_to_utf8(u""), "");
}

TEST(TextContract, EveryLengthOfSequenceIsConvertedBothWays) {
  const std::string bytes = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
  const ustring units = u"a\u00E9\u20AC\U0001F600";
  ASSERT_EQ(units.size(), 5U);
  EXPECT_EQ(utf8_to_ustring(bytes), units);
  EXPECT_EQ(ustring_to_utf8(units), bytes);
}

TEST(TextContract, TheUtf8FormHasNeverFewerBytesThanTheTextHasUnits) {
  for (const ustring& text : {ustring(u"abc"), ustring(u"\u00E9"), ustring(u"\uFFFF"),
                              ustring(u"\U0001F600"), ustring(1, u'\xD800')}) {
    EXPECT_GE(ustring_to_utf8(text).size(), text.size());
  }
}

TEST(TextContract, TextIsAcceptedInEveryForm) {
  const std::string constantBytes = "caf\xC3\xA9";
  std::string changingBytes = "caf\xC3\xA9";
  EXPECT_EQ(utf8_to_ustring(constantBytes), u"caf\u00E9");
  EXPECT_EQ(utf8_to_ustring(changingBytes), u"caf\u00E9");
  EXPECT_EQ(utf8_to_ustring(std::string("a")), u"a");
  const ustring constant = u"caf\u00E9";
  ustring changing = u"caf\u00E9";
  EXPECT_EQ(ustring_to_utf8(constant), constantBytes);
  EXPECT_EQ(ustring_to_utf8(changing), constantBytes);
  EXPECT_EQ(ustring_to_utf8(ustring(u"a")), "a");
}

}  // namespace
