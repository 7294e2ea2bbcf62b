#include "quenlith/shared/appendix/MarkerAppendix.hpp"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "support/FailingAllocations.hpp"

namespace {

using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::MarkerAppendix;
using quenlith::syntax::Marker;

static_assert(std::is_base_of_v<AppendixBuilder, MarkerAppendix>);

TEST(MarkerAppendix, FindsTheEntryWithTheElementAndTheId) {
  MarkerAppendix appendix;
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

TEST(MarkerAppendix, HasNoEntryForAnotherIdOrElement) {
  MarkerAppendix appendix;
  appendix.addEntry(Marker(u"# <@task#a>"));
  for (const auto* other : {u"# <@task#A>", u"# <@text#a>", u"# <@task>", u"# <@task#aa>"}) {
    const auto entry = appendix.findEntry(Marker(other));
    EXPECT_FALSE(entry.marker);
    EXPECT_TRUE(entry.text.empty());
  }
}

TEST(MarkerAppendix, FindsEachOfManyEntries) {
  MarkerAppendix appendix;
  std::vector<Marker> markers;
  for (char16_t id = u'a'; id <= u'z'; ++id) {
    markers.emplace_back(fl::i18n::ustring(u"# <@task#") + id + u">");
    markers.emplace_back(fl::i18n::ustring(u"# <@output#") + id + u">");
  }
  for (const Marker& marker : markers) appendix.addEntry(marker);
  for (const Marker& marker : markers) {
    EXPECT_EQ(appendix.findEntry(marker).text, marker.toString());
  }
}

TEST(MarkerAppendix, KeepsTheFirstEntryOfAnElementAndId) {
  MarkerAppendix appendix;
  appendix.addEntry(Marker(u"# <@task#a {\"k\":1}>"));
  appendix.addEntry(Marker(u"# <@task#a {\"k\":2}>"));
  EXPECT_EQ(appendix.findEntry(Marker(u"# <@task#a>")).text, u"%<@task#a {\"k\":1}>");
  EXPECT_EQ(appendix.build(), u"%<@appendix>\n%<@task#a {\"k\":1}>\n");
}

TEST(MarkerAppendix, BuildsItsTextInEntryOrder) {
  MarkerAppendix appendix;
  EXPECT_EQ(appendix.build(), u"");
  appendix.addEntry(Marker(u"# <@task#b>"));
  appendix.addEntry(Marker(u"## <@task#\"a b\">"));
  EXPECT_EQ(appendix.build(), u"%<@appendix>\n%<@task#b>\n%<@task#\"a b\">\n");
}

TEST(MarkerAppendix, ReplacingRemovesTheEarlierEntries) {
  MarkerAppendix appendix;
  appendix.addEntry(Marker(u"# <@task#a {\"k\":1}>"));
  appendix.addEntry(Marker(u"# <@task#c>"));
  appendix.replace({Marker(u"# <@task#b>"), Marker(u"# <@task#a {\"k\":2}>")});
  EXPECT_EQ(appendix.findEntry(Marker(u"# <@task#a>")).text, u"%<@task#a {\"k\":2}>");
  EXPECT_FALSE(appendix.findEntry(Marker(u"# <@task#c>")).marker);
  EXPECT_EQ(appendix.build(), u"%<@appendix>\n%<@task#b>\n%<@task#a {\"k\":2}>\n");
}

TEST(MarkerAppendix, EntriesFoundShareTheDataOfTheMarkerAdded) {
  MarkerAppendix appendix;
  const Marker added(u"# <@task#a {\"k\":[1,2,3]}>");
  appendix.addEntry(added);
  const auto entry = appendix.findEntry(added);
  ASSERT_TRUE(entry.marker);
  EXPECT_EQ(&entry.marker->dataView(), &added.dataView());
}

TEST(MarkerAppendix, EntriesFoundOutliveTheAppendix) {
  quenlith::shared::appendix::AppendixEntry entry;
  {
    MarkerAppendix appendix;
    appendix.addEntry(Marker(u"# <@task#a {\"k\":1}>"));
    entry = appendix.findEntry(Marker(u"# <@task#a>"));
  }
  ASSERT_TRUE(entry.marker);
  EXPECT_EQ(entry.marker->getId(), u"a");
  EXPECT_EQ(entry.text, u"%<@task#a {\"k\":1}>");
}

TEST(MarkerAppendix, IsUnchangedWhenAnAllocationFails) {
  MarkerAppendix appendix;
  appendix.addEntry(Marker(u"# <@task#a {\"k\":1}>"));
  const fl::i18n::ustring before = appendix.build();
  const Marker other(u"# <@task#b {\"k\":2}>");
  const std::vector<Marker> others{other, Marker(u"# <@task#c>")};
  const auto expectUnchanged = [&] {
    EXPECT_EQ(appendix.build(), before);
    EXPECT_FALSE(appendix.findEntry(other).marker);
    EXPECT_TRUE(appendix.findEntry(Marker(u"# <@task#a>")).marker);
  };
  EXPECT_GT(quenlith::test::failEachAllocation([&] { appendix.replace(others); }, expectUnchanged),
            4u);
  EXPECT_EQ(appendix.build(), u"%<@appendix>\n%<@task#b {\"k\":2}>\n%<@task#c>\n");
  appendix.replace({Marker(u"# <@task#a {\"k\":1}>")});
  EXPECT_GT(quenlith::test::failEachAllocation([&] { appendix.addEntry(other); }, expectUnchanged),
            2u);
  EXPECT_TRUE(appendix.findEntry(other).marker);
}

}  // namespace
