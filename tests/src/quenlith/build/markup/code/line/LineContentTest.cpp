#include "quenlith/build/markup/code/line/LineContent.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using quenlith::build::markup::code::line::isSurelyPlain;
using quenlith::build::markup::code::line::lookInto;

TEST(LineContent, HasAPairAtAnyPlace) {
  for (std::size_t length = 2; length < 70; ++length) {
    for (std::size_t at = 0; at + 1 < length; ++at) {
      std::u16string line(length, u'a');
      line.replace(at, 2, u"<@");
      ASSERT_TRUE(lookInto(line).opening) << length << ' ' << at;
      ASSERT_FALSE(lookInto(line).escape) << length << ' ' << at;
      line.replace(at, 2, u"%\\");
      ASSERT_FALSE(lookInto(line).opening) << length << ' ' << at;
      ASSERT_TRUE(lookInto(line).escape) << length << ' ' << at;
      ASSERT_FALSE(lookInto(line).isPlain());
    }
  }
}

TEST(LineContent, HasBothPairsAtAnyTwoPlaces) {
  for (std::size_t length = 4; length < 40; ++length) {
    for (std::size_t at = 0; at + 3 < length; ++at) {
      std::u16string line(length, u'a');
      line.replace(at, 2, u"<@");
      line.replace(length - 2, 2, u"%\\");
      ASSERT_TRUE(lookInto(line).opening && lookInto(line).escape) << length << ' ' << at;
    }
  }
}

TEST(LineContent, IsPlainWithEachHalfAtAnyPlace) {
  for (std::size_t length = 0; length < 70; ++length) {
    ASSERT_TRUE(lookInto(std::u16string(length, u'a')).isPlain());
    for (std::size_t at = 0; at < length; ++at) {
      for (const char16_t half : {u'<', u'@', u'%', u'\\'}) {
        std::u16string line(length, u'a');
        line[at] = half;
        ASSERT_TRUE(lookInto(line).isPlain()) << length << ' ' << at;
      }
    }
  }
}

TEST(LineContent, IsPlainWithHalvesThatAreNoPair) {
  for (const char16_t* line : {u"@<", u"\\%", u"<\\", u"%@", u"< @ % \\ < @ % \\"}) {
    EXPECT_TRUE(lookInto(line).isPlain());
  }
}

TEST(LineContent, LooksAtWholeUnitsOnly) {
  std::u16string line = u"\u3C3C\u4040\u253C\u5C25\u003C\u0140\u0125\u015C";
  for (int doubled = 0; doubled < 4; ++doubled) {
    ASSERT_TRUE(lookInto(line).isPlain()) << line.size();
    line += line;
  }
}

TEST(LineContent, IsSurelyPlainWithNeitherSecondHalf) {
  for (std::size_t length = 0; length < 70; ++length) {
    ASSERT_TRUE(isSurelyPlain(std::u16string(length, u'<')));
    for (std::size_t at = 0; at < length; ++at) {
      std::u16string line(length, u'%');
      line[at] = u'@';
      ASSERT_FALSE(isSurelyPlain(line)) << length << ' ' << at;
      line[at] = u'\\';
      ASSERT_FALSE(isSurelyPlain(line)) << length << ' ' << at;
      for (const char16_t unit : {u'\u0140', u'\u4000', u'\u5C5D', u'\uFF5C', u'[', u'?'}) {
        line[at] = unit;
        ASSERT_TRUE(isSurelyPlain(line)) << length << ' ' << at;
      }
    }
  }
}

}  // namespace
