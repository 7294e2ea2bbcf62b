#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "quenlith/build/markup/code/TaskSnippetParserFixture.hpp"
#include "support/LogCollector.hpp"

namespace quenlith::test {
namespace {

using syntax::Marker;
using tessera::contentmodel::kdzero::LiveTaskData;

// The appendix.

TEST_F(TaskSnippetParser, FillsTheTaskDataFromTheAppendix) {
  appendix->addEntry(
      Marker(u"%<@task#t1 {\"taskClassDefFile\":\"1\",\"uniqueId\":\"2\",\"text\":\"\u00FC3\","
             u"\"run\":\"4\",\"autorun\":\"5\",\"collapsed\":\"true\",\"outputs\":\"7\","
             u"\"variablesMap\":\"8\",\"appState\":\"9\",\"view\":\"10\",\"other\":\"11\"}>"));
  openTask();
  const LiveTaskData& data = taskNode(0)->getLiveTaskData();
  EXPECT_EQ(data.getAppIdentifier(), u"1");
  EXPECT_EQ(data.getTaskId(), u"2");
  EXPECT_EQ(data.getText(), u"\u00FC3");
  EXPECT_EQ(data.getExecutionModel(), u"4");
  EXPECT_EQ(data.getAutoRun(), u"5");
  EXPECT_EQ(data.getCollapsed(), u"true");
  EXPECT_EQ(data.getAppVariables(), u"7");
  EXPECT_EQ(data.getAppVariablesUserMap(), u"8");
  EXPECT_EQ(data.getAppState(), u"9");
  EXPECT_EQ(data.getView(), u"10");
  EXPECT_EQ(data.getNumCodeLines(), 0);
  EXPECT_EQ(taskNode(0)->getId(), u"t1");
}

TEST_F(TaskSnippetParser, TakesOnlyStringsIntoTheTaskData) {
  appendix->addEntry(Marker(
      u"%<@task#t1 {\"autorun\":true,\"uniqueId\":3,\"text\":null,\"view\":[\"a\"],\"run\":{}}>"));
  openTask();
  EXPECT_EQ(taskNode(0)->getLiveTaskData(), LiveTaskData());
}

TEST_F(TaskSnippetParser, LooksUpTheMarkerOfTheLineInTheAppendix) {
  appendix->addEntry(Marker(u"%<@task#t2 {\"uniqueId\":\"wrong\"}>"));
  appendix->addEntry(Marker(u"%<@output#t1 {\"uniqueId\":\"wrong\"}>"));
  openTask();
  EXPECT_EQ(taskNode(0)->getLiveTaskData(), LiveTaskData());
  EXPECT_EQ(appendix->asked, 1);
}

// The header's anchor.

TEST_F(TaskSnippetParser, HeaderHasTheAnchorOfTheOpeningLine) {
  const ParseResult result = parse(u"# <@task#t1> # <@text:anchor#here>", 0, kBlock);
  EXPECT_EQ(node(0)->getAnchorId(), u"here");
  EXPECT_EQ(node(1)->getAnchorId(), u"");
  EXPECT_EQ(result.markerTypes, (std::set<ustring>{kindText(u"task"), kindText(u"text")}));
}

TEST_F(TaskSnippetParser, HeaderOfALineWithoutAnAnchorHasNone) {
  parse(u"# <@task#t1> # <@text#here> # <@output:anchor#x>", 0, kBlock);
  EXPECT_EQ(node(0)->getAnchorId(), u"");
}

TEST_F(TaskSnippetParser, AnAnchorWithoutAnIdCountsAsAnAnchor) {
  LogRecords records;
  const ustring line = u"# <@task#t1> # <@text:anchor> # <@task#t1>";
  const ParseResult result = parse(line, 0, line);
  EXPECT_EQ(node(0)->getAnchorId(), u"");
  EXPECT_THAT(records.get(), testing::Contains("Found an anchor marker for the task"));
  EXPECT_EQ(result.markerTypes, (std::set<ustring>{kindText(u"task"), kindText(u"text")}));
}

}  // namespace
}  // namespace quenlith::test
