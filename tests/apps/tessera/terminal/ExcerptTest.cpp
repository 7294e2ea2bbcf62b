#include "tessera/terminal/Excerpt.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using tessera::terminal::excerptOf;
using tessera::terminal::MarkedLine;
using tessera::terminal::Style;

/// The rows of line 3, without what all of them begin with.
std::string rows(std::u16string_view text, std::size_t begin, std::size_t end,
                 std::size_t columns = 100) {
  std::string shown = excerptOf({3, text, begin, end}, {.color = false, .columns = columns});
  const std::string first = "     3 | ";
  const std::string second = "       | ";
  EXPECT_EQ(shown.substr(0, first.size()), first);
  shown.erase(0, first.size());
  const std::size_t secondAt = shown.find('\n') + 1;
  EXPECT_EQ(shown.substr(secondAt, second.size()), second);
  shown.erase(secondAt, second.size());
  return shown;
}

TEST(Excerpt, MarksTheCharactersOfARange) {
  EXPECT_EQ(rows(u"x = 1", 4, 5), "x = 1\n    ^\n");
  EXPECT_EQ(rows(u"x = 1", 0, 3), "x = 1\n^~~\n");
}

TEST(Excerpt, MarksAPositionWithOneCaret) {
  EXPECT_EQ(rows(u"x = 1", 2, 2), "x = 1\n  ^\n");
  EXPECT_EQ(rows(u"x = 1", 5, 5), "x = 1\n     ^\n");
  EXPECT_EQ(rows(u"", 0, 0), "\n^\n");
}

TEST(Excerpt, ClipsTheMarkToTheLine) {
  EXPECT_EQ(rows(u"x = 1", 4, 400), "x = 1\n    ^\n");
  EXPECT_EQ(rows(u"x = 1", 400, 500), "x = 1\n     ^\n");
}

TEST(Excerpt, CountsColumnsAndNotCodeUnits) {
  EXPECT_EQ(rows(u"\tx", 1, 2), "        x\n        ^\n");
  EXPECT_EQ(rows(u"a\tx", 1, 3), "a       x\n ^~~~~~~~\n");
  EXPECT_EQ(rows(u"中文x", 2, 3), "中文x\n    ^\n");
  EXPECT_EQ(rows(u"中文x", 1, 2), "中文x\n  ^~\n");
  EXPECT_EQ(rows(u"😀x", 2, 3), "😀x\n  ^\n");
  EXPECT_EQ(rows(u"e\u0301x", 2, 3), "e\u0301x\n ^\n");
  EXPECT_EQ(rows(u"a\u200Bx", 2, 3), "a<U+200B>x\n         ^\n");
  EXPECT_EQ(rows(u"a\u200Bx", 1, 2), "a<U+200B>x\n ^~~~~~~~\n");
}

TEST(Excerpt, ARangeThatCutsAClusterMarksTheWholeCluster) {
  EXPECT_EQ(rows(u"a😀x", 2, 3), "a😀x\n ^~\n");
  EXPECT_EQ(rows(u"e\u0301x", 1, 2), "e\u0301x\n^\n");
  EXPECT_EQ(rows(u"a👩\u200D💻x", 3, 4), "a👩\u200D💻x\n ^~\n");
}

TEST(Excerpt, ALongLineIsCutOnBothSidesOfTheMark) {
  const std::u16string line = std::u16string(100, u'a') + u"MARK" + std::u16string(100, u'b');
  // 40 columns, of which 9 precede the text and 6 are for the cuts.
  EXPECT_EQ(rows(line, 100, 104, 40), "...aaaaaaaaaaaMARKbbbbbbbbbb...\n              ^~~~\n");
  EXPECT_EQ(rows(line, 0, 1, 40), "aaaaaaaaaaaaaaaaaaaaaaaaa...\n^\n");
  EXPECT_EQ(rows(line, 203, 204, 40),
            "...bbbbbbbbbbbbbbbbbbbbbbbbb\n                           ^\n");
  EXPECT_EQ(rows(line, 204, 204, 40),
            "...bbbbbbbbbbbbbbbbbbbbbbbbb\n                            ^\n");
}

TEST(Excerpt, ALineThatFitsExactlyIsNotCut) {
  const std::u16string line(31, u'a');
  EXPECT_EQ(rows(line, 0, 1, 40), std::string(31, 'a') + "\n^\n");
  EXPECT_EQ(rows(line + u"a", 0, 1, 40), std::string(25, 'a') + "...\n^\n");
}

TEST(Excerpt, AMarkThatIsTooLongShowsItsBegin) {
  const std::u16string line =
      std::u16string(100, u'a') + std::u16string(100, u'M') + std::u16string(100, u'b');
  EXPECT_EQ(rows(line, 100, 200, 40),
            "..." + std::string(25, 'M') + "...\n   ^" + std::string(24, '~') + "\n");
}

TEST(Excerpt, WideCharactersAreNotCutInTheMiddle) {
  const std::u16string line(100, u'中');
  const std::string shown = rows(line, 50, 51, 40);
  EXPECT_EQ(shown.substr(0, shown.find('\n')), "...中中中中中中中中中中中中...");
}

TEST(Excerpt, NoRowIsLongerThanTheTerminal) {
  const std::u16string line = std::u16string(5000, u'x');
  for (std::size_t columns = 30; columns < 200; columns += 7) {
    for (const std::size_t begin : {0U, 1U, 20U, 2500U, 4990U, 5000U}) {
      const std::string shown = excerptOf({3, line, begin, begin + 30}, {false, columns});
      EXPECT_LE(shown.find('\n'), columns);
      EXPECT_LE(shown.size() - shown.find('\n') - 2, columns);
    }
  }
}

TEST(Excerpt, ATerminalOfNoWidthStillShowsTheMark) {
  const std::u16string line = std::u16string(100, u'a') + u"M" + std::u16string(100, u'b');
  EXPECT_EQ(rows(line, 100, 101, 0), "...aaaaaaaMbbbbbb...\n          ^\n");
}

TEST(Excerpt, NumbersOfManyDigitsMoveTheText) {
  EXPECT_EQ(excerptOf({1234567, u"x", 0, 1}, {}), " 1234567 | x\n         | ^\n");
}

TEST(Excerpt, ColoursAreOnlyForTheCaretAndHiddenCharacters) {
  EXPECT_EQ(excerptOf({3, u"a\u200B", 0, 1}, {.color = true}),
            "     3 | a\x1b[7m<U+200B>\x1b[0m\n       | \x1b[1;32m^\x1b[0m\n");
}

}  // namespace
