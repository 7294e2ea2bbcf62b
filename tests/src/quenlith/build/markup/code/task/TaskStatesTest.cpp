#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "quenlith/build/markup/code/TaskSnippetParserFixture.hpp"
#include "support/LogCollector.hpp"

namespace quenlith::test {
namespace {

using syntax::Marker;
using testing::ElementsAre;
using testing::IsEmpty;
using Records = std::vector<std::string>;

// States that host and parser do not agree on: each row of the decision table for a line.

TEST_F(TaskSnippetParser, WithoutAnOpenTaskALineWithoutAMarkerCountsAsTheFirst) {
  for (const int kind : {0, 1, 3, 255}) {
    parser->reset();
    LogRecords records;
    const std::uint64_t before = document->getNumberOfChildren();
    const ParseResult result = parse(u"x", static_cast<std::uint8_t>(kind), u"");
    EXPECT_EQ(result.type, (SnippetType{0, 3}));
    EXPECT_THAT(result.markerTypes, ElementsAre(kindText(u"task")));
    EXPECT_EQ(document->getNumberOfChildren(), before + 1);
    EXPECT_FALSE(isHeader(before));
    EXPECT_EQ(
        records.get(),
        (Records{"Parsing using the task parser", "Task marker found for first time",
                 "Adding task marker to the list of seen markers", "In LineNodeParserService"}));
  }
}

TEST_F(TaskSnippetParser, WithoutAnOpenTaskAnUnpairedMarkerLogsAndFailsAfterTheLine) {
  LogRecords records;
  EXPECT_EQ(parse(u"## <@task#t1 { \"a\" : 1 }>", 1, u"").type.kind, 0);
  EXPECT_EQ(records.get(),
            (Records{"Parsing using the task parser",
                     "No matching task marker was found for %<@task#t1 {\"a\":1}>",
                     "In LineNodeParserService", "Building a missing task marker failure",
                     "finding Appendix Entry"}));
}

TEST_F(TaskSnippetParser, WithoutAnOpenTaskAPairedMarkerOpensOneAndLogsItsSteps) {
  appendix->addEntry(Marker(u"%<@task#t1 {\"uniqueId\":\"\u00FC1\"}>"));
  LogRecords records;
  EXPECT_EQ(parse(u"# <@task#t1> # <@text:anchor#a>", 0, kBlock).type.kind, 3);
  EXPECT_EQ(
      records.get(),
      (Records{"Parsing using the task parser", "Task marker found for first time",
               "Adding task marker to the list of seen markers", "Parsing live task appendix data",
               "finding Appendix Entry", "Adding Header node to tessera doc",
               std::string("\xC3\xBC") + "1", "Found an anchor marker for the task",
               "Adding text marker to the list of seen markers", "In LineNodeParserService"}));
}

TEST_F(TaskSnippetParser, AnEmptyTaskIdIsARecordToo) {
  LogRecords records;
  const ustring line = u"x # <@task#t1> # <@task#t1>";
  parse(line, 0, line);
  EXPECT_EQ(
      records.get(),
      (Records{"Parsing using the task parser", "Task marker found for first time",
               "Adding task marker to the list of seen markers", "Parsing live task appendix data",
               "finding Appendix Entry", "Adding Header node to tessera doc", "",
               "Closing task found on same line, closing it now",
               "End of task found, cleaning up 1", "", "In LineNodeParserService"}));
}

TEST_F(TaskSnippetParser, WithoutAnOpenTaskAndAnotherIdInAnOpenKindOverlaps) {
  LogRecords records;
  const ParseResult result = parse(kOpening, 3, kBlock);
  EXPECT_EQ(result.type.kind, 3);
  EXPECT_THAT(result.markerTypes, ElementsAre(kindText(u"task")));
  ASSERT_EQ(document->getNumberOfChildren(), 1u);
  EXPECT_THAT(failures(0), ElementsAre(u"overlapping_task_marker"));
  EXPECT_EQ(records.get(),
            (Records{"Parsing using the task parser", "Task marker found for first time",
                     "Adding task marker to the list of seen markers", "In LineNodeParserService",
                     "Building an overlapping task marker failure", "finding Appendix Entry"}));
  // The id is stored as overlapping: it opens no task later.
  parse(u"x", 3, kBlock);
  EXPECT_EQ(parse(kOpening, 0, kBlock).type.kind, 3);
  EXPECT_THAT(failures(2), ElementsAre(u"missing_task_marker_pair"));
}

TEST_F(TaskSnippetParser, WithoutAnOpenTaskAnEmptyIdInAnOpenKindOpensOneWithoutAPartner) {
  EXPECT_EQ(parse(u"# <@task>", 2, u"").type.kind, 3);
  EXPECT_TRUE(isHeader(0));
  EXPECT_EQ(taskNode(0)->getId(), u"");
  EXPECT_THAT(failures(1), IsEmpty());
}

TEST_F(TaskSnippetParser, WithoutAnOpenTaskAnEmptyIdMayOpenAndCloseOnOneLine) {
  EXPECT_EQ(parse(u"x # <@task> # <@task>", 2, u"").type.kind, 0);
  EXPECT_EQ(codeLines(0), 1);
  EXPECT_EQ(document->getNumberOfChildren(), 2u);
  EXPECT_EQ(parse(u"# <@task> # <@task>", 2, u"").type.kind, 0);
  EXPECT_EQ(codeLines(2), 0);
  EXPECT_EQ(document->getNumberOfChildren(), 3u);
}

TEST_F(TaskSnippetParser, WithoutAnOpenTaskEqualMarkersOfAnotherIdCloseTheHeaderLeftOver) {
  parseSnippet({u"# <@task#t1>", u"# <@task#t1>"});
  EXPECT_EQ(codeLines(0), 2);
  LogRecords records;
  EXPECT_EQ(parse(u"x # <@task#b> # <@task#b>", 3, u"").type.kind, 0);
  EXPECT_EQ(document->getNumberOfChildren(), 4u);
  EXPECT_THAT(failures(3), ElementsAre(u"overlapping_task_marker"));
  EXPECT_EQ(codeLines(0), 1);
  EXPECT_EQ(records.get(),
            (Records{"Parsing using the task parser", "Task marker found for first time",
                     "Adding task marker to the list of seen markers",
                     "Closing task found on same line, closing it now",
                     "End of task found, cleaning up 1", "", "In LineNodeParserService",
                     "Building an overlapping task marker failure", "finding Appendix Entry"}));

  // At the start of the line: no line node, no failure.
  const ParseResult result = parse(u"# <@task#c> # <@task#c> # <@output>", 3, u"");
  EXPECT_EQ(result.type, (SnippetType{0, 0}));
  EXPECT_THAT(result.markerTypes, ElementsAre(kindText(u"task")));
  EXPECT_EQ(document->getNumberOfChildren(), 4u);
  EXPECT_EQ(codeLines(0), 0);
}

TEST_F(TaskSnippetParser, InAnOpenTaskALineWithoutAMarkerIsCountedWhateverItsKind) {
  openTask();
  for (const int kind : {0, 1, 3, 255}) {
    EXPECT_EQ(parse(u"x", static_cast<std::uint8_t>(kind), u"").type.kind, 3);
  }
  parse(kOpening, 3, kBlock);
  EXPECT_EQ(codeLines(0), 6);
}

TEST_F(TaskSnippetParser, InAnOpenTaskAnUnpairedMarkerOfAClosedKindIsNotCounted) {
  openTask();
  EXPECT_EQ(parse(u"# <@task#b>", 0, kBlock).type.kind, 3);
  EXPECT_THAT(failures(2), ElementsAre(u"missing_task_marker_pair"));
  // The id of the open task stays.
  EXPECT_EQ(parse(kOpening, 3, kBlock).type.kind, 0);
  EXPECT_EQ(codeLines(0), 2);
}

TEST_F(TaskSnippetParser, InAnOpenTaskAPairedMarkerOfAClosedKindClosesIt) {
  openTask();
  EXPECT_EQ(parse(u"# <@task#b>", 1, u"# <@task#b> # <@task#b>").type.kind, 0);
  EXPECT_THAT(failures(2), IsEmpty());
  EXPECT_EQ(codeLines(0), 2);
  EXPECT_EQ(document->getNumberOfChildren(), 3u);
}

TEST_F(TaskSnippetParser, InAnOpenTaskTheClosingLineLogsItsCount) {
  openTask();
  LogRecords records;
  parse(kOpening, 255, kBlock);
  EXPECT_EQ(records.get(),
            (Records{"Parsing using the task parser", "End of task found, cleaning up 2", "",
                     "In LineNodeParserService"}));
}

TEST_F(TaskSnippetParser, AnUnpairedMarkerLeavesTheIdOfTheTaskThatWrappedAround) {
  openTask();
  for (int line = 2; line <= 65536; ++line) {
    const bool last = line == 65536;
    ASSERT_EQ(parser->parse(document, {u"", {0, 3}, u""}).type.kind, last ? 0 : 3) << line;
  }
  // Nothing was closed.
  EXPECT_EQ(codeLines(0), 0);
  EXPECT_EQ(parse(u"# <@task#b>", 0, kBlock).type.kind, 0);
  // The id is still known: its marker opens a task without a pairing test.
  const std::uint64_t header = document->getNumberOfChildren();
  EXPECT_EQ(parse(kOpening, 3, u"").type.kind, 3);
  EXPECT_TRUE(isHeader(header));
}

TEST_F(TaskSnippetParser, AClosingLineThatWrapsTheCountWritesNone) {
  openTask();
  for (int line = 2; line <= 65535; ++line) parser->parse(document, {u"", {0, 3}, u""});
  LogRecords records;
  EXPECT_EQ(parse(kOpening, 3, kBlock).type.kind, 0);
  EXPECT_EQ(codeLines(0), 0);
  EXPECT_THAT(records.get(), testing::Contains("End of task found, cleaning up 0"));
}

TEST_F(TaskSnippetParser, AnOverlapThatWrapsTheCountIsAFailureAndClosesTheKind) {
  openTask();
  for (int line = 2; line <= 65535; ++line) parser->parse(document, {u"", {0, 3}, u""});
  EXPECT_EQ(parse(u"# <@task#b>", 3, kBlock).type.kind, 0);
  EXPECT_THAT(failures(document->getNumberOfChildren() - 1),
              ElementsAre(u"overlapping_task_marker"));
}

}  // namespace
}  // namespace quenlith::test
