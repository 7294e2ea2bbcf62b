#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "quenlith/build/markup/code/TaskSnippetParserFixture.hpp"

namespace quenlith::test {
namespace {

using syntax::Marker;
using testing::ElementsAre;
using testing::IsEmpty;

// Markers without a partner.

TEST_F(TaskSnippetParser, AnIdThatDoesNotOccurTwiceInTheBlockIsAFailure) {
  for (const char16_t* block : {u"", u"# <@task#t1>", u"# <@task#t1>\n# <@output#t1>",
                                u"# <@task#t1>\n# <@task#t1>\n# <@task#t1>"}) {
    const ParseResult result = parse(kOpening, 0, block);
    EXPECT_EQ(result.type, (SnippetType{0, 0}));
    EXPECT_THAT(result.markerTypes, ElementsAre(kindText(u"task")));
    const std::uint64_t last = document->getNumberOfChildren() - 1;
    EXPECT_FALSE(isHeader(last));
    EXPECT_THAT(failures(last), ElementsAre(u"missing_task_marker_pair"));
  }
  EXPECT_EQ(document->getNumberOfChildren(), 4u);
}

TEST_F(TaskSnippetParser, TheFailureNamesTheMarkerAndContainsTheWholeAppendixEntry) {
  appendix->addEntry(Marker(
      u"%<@task#t1 {\"a\":1,\"b\":1.5,\"c\":[true,null],\"d\":{\"e\":\"f\"},\"uniqueId\":\"u\"}>"));
  parse(u"# <@task:kind#t1 {\"mine\":1}>", 0, u"");
  const ParserFailure& failure = node(0)->getParserFailures()[0];
  EXPECT_EQ(failure.getMarkerInfo().getFeatureId(), u"task");
  EXPECT_EQ(failure.getMarkerInfo().getMarkerId(), u"t1");
  EXPECT_EQ(failure.getMarkerInfo().getSubFeatureId(), u"");
  EXPECT_EQ(failure.getFailureData(), appendix->entries[0].getData());
  EXPECT_EQ(failure.getFailureData().size(), 5u);
}

TEST_F(TaskSnippetParser, TheFailureWithoutAnAppendixEntryHasNoData) {
  parse(kOpening, 0, u"");
  EXPECT_TRUE(node(0)->getParserFailures()[0].getFailureData().empty());
}

TEST_F(TaskSnippetParser, FailuresWithTheSameAppendixEntryShareItsData) {
  appendix->addEntry(Marker(u"%<@task#t1 {\"a\":[1,2]}>"));
  appendix->addEntry(Marker(u"%<@task#t2 {\"b\":[1,2]}>"));
  for (const char16_t* line : {u"# <@task#t1>", u"# <@task#t2>", u"# <@task#t1>"}) {
    parse(line, 0, u"");
  }
  const auto dataOf = [this](std::uint64_t line) {
    return &node(line)->getParserFailures()[0].getFailureData();
  };
  EXPECT_EQ(dataOf(0), dataOf(2));
  EXPECT_EQ(*dataOf(0), appendix->entries[0].getData());
  EXPECT_EQ(*dataOf(1), appendix->entries[1].getData());
}

TEST_F(TaskSnippetParser, AFailureHasTheDataOfTheEntryAsItIsThen) {
  for (const char16_t* entry : {u"%<@task#t1 {\"a\":1}>", u"%<@task#t1 {\"a\":2}>"}) {
    appendix->entries = {Marker(entry)};
    parse(u"# <@task#t1>", 0, u"");
    const std::uint64_t last = document->getNumberOfChildren() - 1;
    EXPECT_EQ(node(last)->getParserFailures()[0].getFailureData(), Marker(entry).getData());
  }
}

TEST_F(TaskSnippetParser, TheFirstTaskMarkerOfALineDecides) {
  parse(u"# <@task#t2> # <@task#t1>", 0, kBlock);
  EXPECT_EQ(node(0)->getParserFailures()[0].getMarkerInfo().getMarkerId(), u"t2");
}

// Tasks within tasks.

TEST_F(TaskSnippetParser, AnotherIdInsideATaskIsAFailureAndIsCounted) {
  EXPECT_THAT(parseSnippet({u"# <@task#a>", u"# <@task#b>", u"# <@task#b>", u"# <@task#a>"}),
              ElementsAre(3, 3, 3, 0));
  EXPECT_EQ(codeLines(0), 4);
  EXPECT_THAT(failures(1), IsEmpty());
  EXPECT_THAT(failures(2), ElementsAre(u"overlapping_task_marker"));
  EXPECT_THAT(failures(3), ElementsAre(u"overlapping_task_marker"));
  EXPECT_THAT(failures(4), IsEmpty());
  const ParserFailure& failure = node(2)->getParserFailures()[0];
  EXPECT_EQ(failure.getMarkerInfo().getFeatureId(), u"task");
  EXPECT_EQ(failure.getMarkerInfo().getMarkerId(), u"b");
  EXPECT_EQ(failure.getMarkerInfo().getSubFeatureId(), u"");
}

TEST_F(TaskSnippetParser, ThePartnerOfAnOverlappingMarkerOpensNoTaskUntilReset) {
  const std::vector<ustring> lines{u"# <@task#a>", u"# <@task#b>", u"# <@task#a>", u"# <@task#b>"};
  EXPECT_THAT(parseSnippet(lines), ElementsAre(3, 3, 0, 0));
  EXPECT_THAT(failures(2), ElementsAre(u"overlapping_task_marker"));
  EXPECT_THAT(failures(4), ElementsAre(u"missing_task_marker_pair"));
  EXPECT_EQ(document->getNumberOfChildren(), 5u);

  const ustring pair = u"# <@task#b>\n# <@task#b>";
  EXPECT_EQ(parse(u"# <@task#b>", 0, pair).type.kind, 0);
  parser->reset();
  EXPECT_EQ(parse(u"# <@task#b>", 0, pair).type.kind, 3);
}

TEST_F(TaskSnippetParser, TheOverlapFailureContainsTheAppendixEntryToo) {
  appendix->addEntry(Marker(u"%<@task#b {\"x\":true}>"));
  openTask();
  parse(u"# <@task#b>", 3, kBlock);
  EXPECT_EQ(node(2)->getParserFailures()[0].getFailureData(), appendix->entries[0].getData());
}

}  // namespace
}  // namespace quenlith::test
