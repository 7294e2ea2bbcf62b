#include <gtest/gtest.h>

#include <string>

#include "quenlith/build/markup/code/isPlainLine.hpp"

namespace {

using quenlith::build::markup::code::isPlainLine;

TEST(PlainLine, HoldsNoPairAtAnyPlace) {
  for (std::size_t length = 2; length < 70; ++length) {
    for (std::size_t at = 0; at + 1 < length; ++at) {
      for (const char16_t* pair : {u"<@", u"%\\"}) {
        std::u16string line(length, u'a');
        line.replace(at, 2, pair);
        ASSERT_FALSE(isPlainLine(line)) << length << ' ' << at;
      }
    }
  }
}

TEST(PlainLine, MayHoldEachHalfAtAnyPlace) {
  for (std::size_t length = 0; length < 70; ++length) {
    ASSERT_TRUE(isPlainLine(std::u16string(length, u'a')));
    for (std::size_t at = 0; at < length; ++at) {
      for (const char16_t half : {u'<', u'@', u'%', u'\\'}) {
        std::u16string line(length, u'a');
        line[at] = half;
        ASSERT_TRUE(isPlainLine(line)) << length << ' ' << at;
      }
    }
  }
}

TEST(PlainLine, MayHoldHalvesThatAreNoPair) {
  for (const char16_t* line : {u"@<", u"\\%", u"<\\", u"%@", u"< @ % \\ < @ % \\", u"@<@"}) {
    EXPECT_EQ(isPlainLine(line), std::u16string_view(line) != u"@<@");
  }
}

TEST(PlainLine, LooksAtWholeUnitsOnly) {
  EXPECT_TRUE(isPlainLine(u"\u3C3C\u4040\u253C\u5C25\u003C\u0140\u0125\u015C"));
}

}  // namespace
