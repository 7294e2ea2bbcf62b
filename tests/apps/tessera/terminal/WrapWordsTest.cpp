#include "tessera/terminal/wrapWords.hpp"

#include <gtest/gtest.h>

namespace {

using tessera::terminal::widthOf;
using tessera::terminal::wrapWords;

TEST(WrapWords, ARowIsAsLongAsItMayBe) {
  EXPECT_EQ(wrapWords("aaa bbb", 0, 7), "aaa bbb");
  EXPECT_EQ(wrapWords("aaa bbb", 0, 6), "aaa\n    bbb");
  EXPECT_EQ(wrapWords("aaa bbb", 1, 7), "aaa\n    bbb");
  EXPECT_EQ(wrapWords("a bb cc dd", 0, 9), "a bb cc\n    dd");
  EXPECT_EQ(wrapWords("a bb cc dd ee", 0, 9), "a bb cc\n    dd ee");
}

TEST(WrapWords, RowsAfterTheFirstAreIndentedAsAsked) {
  EXPECT_EQ(wrapWords("aaa bbb ccc", 2, 6, 2), "aaa\n  bbb\n  ccc");
  EXPECT_EQ(wrapWords("aaa bbb ccc", 0, 6, 0), "aaa\nbbb\nccc");
}

TEST(WrapWords, AWordThatIsTooLongIsNotBroken) {
  EXPECT_EQ(wrapWords("aaaaaaaaaa b cccccccccc d", 3, 8),
            "aaaaaaaaaa\n    b\n    cccccccccc\n    d");
}

TEST(WrapWords, BlanksAreKeptAndTextMayBeEmpty) {
  EXPECT_EQ(wrapWords("", 0, 8), "");
  EXPECT_EQ(wrapWords("a  b", 0, 8), "a  b");
}

TEST(WrapWords, WideAndCombiningCharactersCountAsATerminalShowsThem) {
  EXPECT_EQ(widthOf("ab"), 2U);
  EXPECT_EQ(widthOf("\u4e2d\u6587"), 4U);
  EXPECT_EQ(widthOf("e\u0301"), 1U);
  EXPECT_EQ(wrapWords("\u4e2d\u6587 e\u0301", 0, 6), "\u4e2d\u6587 e\u0301");
  EXPECT_EQ(wrapWords("\u4e2d\u6587 ee\u0301", 0, 6), "\u4e2d\u6587\n    ee\u0301");
}

}  // namespace
