#include "tessera/source/readAppendix.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using tessera::source::Appendix;
using tessera::source::AppendixWarning;
using tessera::source::findUnusedEntries;
using tessera::source::readAppendix;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> describe(const std::vector<AppendixWarning>& warnings) {
  std::vector<std::string> texts;
  for (const AppendixWarning& warning : warnings) {
    texts.push_back(std::to_string(warning.place.line) + ":" +
                    std::to_string(warning.place.column) + " " + warning.text);
  }
  return texts;
}

Appendix read(std::u16string text) {
  return readAppendix(tessera::source::splitSource(std::move(text)));
}

TEST(ReadAppendix, TakesOneMarkerPerLineAndSkipsBlankLines) {
  const Appendix appendix =
      read(u"code\n# <@appendix>\n# <@task#a {\"k\":1}>\n\n \t\n<no leader>\n  %% <@task#b>\n");
  ASSERT_EQ(appendix.entries.size(), 2u);
  EXPECT_EQ(appendix.entries[0].marker.toString(), u"%<@task#a {\"k\":1}>");
  EXPECT_EQ(appendix.entries[0].place.line, 3u);
  EXPECT_EQ(appendix.entries[1].place.line, 7u);
  EXPECT_EQ(appendix.entries[1].place.column, 3u);
  EXPECT_THAT(describe(appendix.warnings),
              ElementsAre("6:1 a line of the appendix holds no marker"));
}

TEST(ReadAppendix, AFileWithoutAppendixHasNoEntry) {
  const Appendix appendix = read(u"# <@task#a>\n");
  EXPECT_TRUE(appendix.entries.empty());
  EXPECT_TRUE(appendix.warnings.empty());
}

TEST(ReadAppendix, WarnsAboutEveryUnusableLine) {
  const Appendix appendix = read(
      u"#<@appendix>\n"
      u"# <@task#a {\"k\":}>\n"
      u"ä🏆 # <@task#a>\n"
      u"# <@task#a {\"k\":2}>\n"
      u"// <@appendix>\n"
      u"# <@task#c> # <@task#d>\n"
      u"# <@tsak#e>\n");
  ASSERT_EQ(appendix.entries.size(), 2u);
  EXPECT_EQ(appendix.entries[1].marker.toString(), u"%<@task#c>");
  const auto texts = describe(appendix.warnings);
  ASSERT_EQ(texts.size(), 5u);
  EXPECT_THAT(texts[0], testing::StartsWith("2:17 damaged marker in the appendix: "));
  EXPECT_EQ(texts[1], "4:1 a second appendix entry for task with id \"a\"; only the first counts");
  EXPECT_EQ(texts[2], "5:1 a second line starts an appendix");
  EXPECT_EQ(texts[3], "6:13 a line of the appendix holds one marker; only the first is taken");
  EXPECT_THAT(texts[4], testing::StartsWith("7:"));
  EXPECT_EQ(appendix.entries[0].place.column, 4u);
}

TEST(ReadAppendix, AnEntryThatNoMarkerOfTheCodeHasIsUnused) {
  const std::u16string code = u"# <@task#a>\nx # <@output#b>";
  const Appendix appendix = read(
      code + u"\n#<@appendix>\n# <@task#a>\n# <@task#b>\n# <@output#b>\n # <@task#\"\\u001b\">");
  EXPECT_THAT(describe(findUnusedEntries(appendix, code)),
              ElementsAre("5:1 no marker of the code has this entry: task with id \"b\"",
                          "7:2 no marker of the code has this entry: task with id \"\\u001b\""));
}

}  // namespace
