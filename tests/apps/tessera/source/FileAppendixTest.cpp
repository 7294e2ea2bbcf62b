#include "tessera/source/FileAppendix.hpp"

#include <gtest/gtest.h>

namespace {

using quenlith::syntax::Marker;
using tessera::source::FileAppendix;

TEST(FileAppendix, FindsTheEntryWithTheElementAndTheId) {
  FileAppendix appendix;
  appendix.addEntry(Marker(u"# <@task#a {\"k\":1}>"));
  appendix.addEntry(Marker(u"# <@output#a {\"k\":2}>"));
  appendix.addEntry(Marker(u"# <@task {\"k\":3}>"));
  const auto entry = appendix.findEntry(Marker(u"// <@task:type#a [1,2] {\"other\":true}>"));
  ASSERT_TRUE(entry.marker);
  EXPECT_EQ(entry.text, u"%<@task#a {\"k\":1}>");
  EXPECT_EQ(entry.marker->toString(), entry.text);
  EXPECT_EQ(appendix.findEntry(Marker(u"% <@output#a>")).text, u"%<@output#a {\"k\":2}>");
  EXPECT_EQ(appendix.findEntry(Marker(u"task")).text, u"%<@task {\"k\":3}>");
}

TEST(FileAppendix, HasNoEntryForAnotherIdOrElement) {
  FileAppendix appendix;
  appendix.addEntry(Marker(u"# <@task#a>"));
  for (const auto* other : {u"# <@task#A>", u"# <@text#a>", u"# <@task>", u"# <@task#aa>"}) {
    const auto entry = appendix.findEntry(Marker(other));
    EXPECT_FALSE(entry.marker);
    EXPECT_TRUE(entry.text.empty());
  }
}

TEST(FileAppendix, TheFirstEntryCounts) {
  FileAppendix appendix;
  appendix.addEntry(Marker(u"# <@task#a {\"k\":1}>"));
  appendix.addEntry(Marker(u"# <@task#a {\"k\":2}>"));
  EXPECT_EQ(appendix.findEntry(Marker(u"# <@task#a>")).text, u"%<@task#a {\"k\":1}>");
  EXPECT_EQ(appendix.build(), u"%<@appendix>\n%<@task#a {\"k\":1}>\n");
}

TEST(FileAppendix, BuildsItsTextInTheOrderOfTheEntries) {
  FileAppendix appendix;
  EXPECT_EQ(appendix.build(), u"");
  appendix.addEntry(Marker(u"# <@task#b>"));
  appendix.addEntry(Marker(u"## <@task#\"a b\">"));
  EXPECT_EQ(appendix.build(), u"%<@appendix>\n%<@task#b>\n%<@task#\"a b\">\n");
}

TEST(FileAppendix, ReplacingForgetsWhatWasThere) {
  FileAppendix appendix;
  appendix.addEntry(Marker(u"# <@task#a {\"k\":1}>"));
  appendix.replace({Marker(u"# <@task#b>"), Marker(u"# <@task#a {\"k\":2}>")});
  EXPECT_EQ(appendix.findEntry(Marker(u"# <@task#a>")).text, u"%<@task#a {\"k\":2}>");
  EXPECT_EQ(appendix.build(), u"%<@appendix>\n%<@task#b>\n%<@task#a {\"k\":2}>\n");
}

}  // namespace
