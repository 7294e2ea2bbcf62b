#include "tessera/html/HtmlText.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using tessera::html::HtmlText;

std::string htmlOf(std::u16string_view text) {
  std::string output;
  HtmlText(output).add(text);
  return output;
}

std::string plainHtmlOf(std::string_view text) {
  std::string output;
  HtmlText(output).addPlain(text);
  return output;
}

TEST(HtmlText, ASelectorStaysWhereItIsPartOfAnEmoji) {
  EXPECT_EQ(htmlOf(u"1\uFE0F\u20E3"), "1\uFE0F\u20E3");
  EXPECT_EQ(htmlOf(u"é1\uFE0F\u20E3é"), "é1\uFE0F\u20E3é");
  EXPECT_EQ(htmlOf(u"\u26A0\uFE0F"), "\u26A0\uFE0F");
  EXPECT_EQ(plainHtmlOf("1\uFE0F\u20E3.py"), "1\uFE0F\u20E3.py");
}

TEST(HtmlText, ASelectorThatIsPartOfNothingIsShownByItsNumber) {
  EXPECT_EQ(htmlOf(u"a\uFE0F"), "a<i class=u>U+FE0F</i>");
  EXPECT_EQ(htmlOf(u"\uFE0F"), "<i class=u>U+FE0F</i>");
  EXPECT_EQ(htmlOf(u"1<\uFE0F"), "1&lt;<i class=u>U+FE0F</i>");
  EXPECT_EQ(htmlOf(u"1\u202E\uFE0F"), "1<i class=u>U+202E</i><i class=u>U+FE0F</i>");
  EXPECT_EQ(plainHtmlOf("a\uFE0F"), "a\uFFFD");
}

}  // namespace
