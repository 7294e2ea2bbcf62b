#include "tessera/source/readAppendix.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::u16string> entriesOf(std::u16string text) {
  std::vector<std::u16string> texts;
  for (const auto& entry :
       tessera::source::readAppendix(tessera::source::splitSource(std::move(text)))) {
    texts.push_back(entry.toString());
  }
  return texts;
}

TEST(ReadAppendix, TakesTheFirstMarkerOfEachLine) {
  EXPECT_THAT(entriesOf(u"code\n# <@appendix>\n# <@task#a {\"k\":1}>\n\n \t\n<no leader>\n"
                        u"  %% <@task#b> # <@task#c>\n# <@task#d {\"k\":}>\n"),
              ElementsAre(u"%<@task#a {\"k\":1}>", u"%<@task#b>"));
}

TEST(ReadAppendix, TheFirstEntryOfAnElementAndIdCounts) {
  EXPECT_THAT(entriesOf(u"# <@appendix>\n# <@task#a {\"k\":1}>\n# <@task#a>\n# <@output#a>"),
              ElementsAre(u"%<@task#a {\"k\":1}>", u"%<@output#a>"));
}

TEST(ReadAppendix, TakesEntriesInBlockComments) {
  EXPECT_THAT(entriesOf(u"<!-- <@appendix> -->\n<!-- <@task#a {\"k\":1}> -->\n"
                        u" /* <@task#b> */\n/* <@task#c>\n"),
              ElementsAre(u"%<@task#a {\"k\":1}>", u"%<@task#b>"));
}

TEST(ReadAppendix, AFileWithoutAppendixHasNoEntry) {
  EXPECT_THAT(entriesOf(u"# <@task#a>\n"), IsEmpty());
}

}  // namespace
