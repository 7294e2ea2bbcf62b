#include "tessera/source/SourceLines.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using tessera::source::SourceLines;

TEST(SourceLines, NumbersTheLinesOfCodeAndAppendix) {
  SourceLines original({u"a\n\nb", true}, u"# <@appendix>", {u"c\nd", true});
  const SourceLines lines(std::move(original));
  ASSERT_EQ(lines.count(), 6u);
  EXPECT_EQ(lines.line(1), u"a");
  EXPECT_EQ(lines.line(2), u"");
  EXPECT_EQ(lines.line(4), u"# <@appendix>");
  EXPECT_EQ(lines.line(6), u"d");
  EXPECT_EQ(lines.line(7), u"");
}

TEST(SourceLines, AFileMayLackCodeOrAppendix) {
  EXPECT_EQ(SourceLines({u"", false}, u"", {u"", false}).count(), 0u);
  EXPECT_EQ(SourceLines({u"", true}, u"", {u"", false}).count(), 1u);
  EXPECT_EQ(SourceLines({u"", false}, u"%<@appendix>", {u"", false}).count(), 1u);
  EXPECT_EQ(SourceLines({u"", false}, u"%<@appendix>", {u"x", true}).line(2), u"x");
}

TEST(SourceLines, SomeLinesHaveTheirNumbers) {
  const SourceLines lines({2, 7}, {u"b\n\xD83C\xDFC6z", true});
  EXPECT_EQ(lines.line(1), u"");
  EXPECT_EQ(lines.line(2), u"b");
  EXPECT_EQ(lines.line(3), u"");
  EXPECT_EQ(lines.line(7), u"\xD83C\xDFC6z");
  EXPECT_EQ(lines.countCharactersBefore(7, 2), 1u);
  EXPECT_EQ(lines.line(8), u"");
}

// Long lines are counted from the nearest of several known places, and a pair may lie across one.
TEST(SourceLines, CountsCharactersOfShortAndLongLinesAlike) {
  for (const std::size_t length : {10U, 600U, 1024U, 5000U}) {
    for (const std::size_t shift : {0U, 1U}) {
      std::u16string text(shift, u'x');
      while (text.size() < length) text += u"\U0001F3C6";
      const SourceLines lines({text, true}, u"", {u"", false});
      for (std::size_t unit = 0; unit <= text.size(); ++unit) {
        ASSERT_EQ(lines.countCharactersBefore(1, unit),
                  tessera::source::countCharacters(std::u16string_view(text).substr(0, unit)))
            << unit << " of " << text.size();
      }
    }
  }
}

}  // namespace
