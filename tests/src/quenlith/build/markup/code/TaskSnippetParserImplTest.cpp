#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "fakes/LogRecords.hpp"
#include "fakes/ParserFakes.hpp"

namespace {

using document::kdzero::LineNode;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::LiveAppLineNode;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using failures::kdzero::ParserFailure;
using fl::i18n::ustring;
using foundation::json::Value;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::SnippetType;
using quenlith::build::markup::code::TaskSnippetParserImpl;
using quenlith::syntax::Marker;
using quenlith::test::FakeAppendix;
using quenlith::test::FakeElementParser;
using quenlith::test::FakeProvider;
using quenlith::test::LogRecords;
using quenlith::test::ServiceFailure;
using tessera::contentmodel::kdzero::LiveTaskData;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Records = std::vector<std::string>;

ustring kindText(const char16_t* element) {
  return Marker(ustring(element)).toString();
}

/// Makes a task node of its own for the text that an output marker refers to.
class TaskNodeMaker final : public quenlith::build::markup::code::CodeElementParser {
 public:
  bool canParse(const Marker& marker) override { return marker.getElement() == u"output"; }
  Node parse(const kd::zero::Model& model,
             const quenlith::build::markup::code::CodeElement& /*element*/) override {
    return LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode({});
  }
};

/// Tests with a parser that is fed lines by hand.
class TaskSnippetParser : public testing::Test {
 protected:
  TaskSnippetParser() {
    provider->elementParsers = {defaultParser};
    parser = std::make_unique<TaskSnippetParserImpl>(appendix, provider);
  }

  ParseResult parse(const ustring& line, std::uint8_t kind, const ustring& block) {
    return parser->parse(document, {line, {0, kind}, block});
  }
  /// Parses the lines of a snippet as a host does, each with the type of the one before, and
  /// returns the kinds.
  std::vector<int> parseSnippet(const std::vector<ustring>& lines) {
    ustring block;
    for (const ustring& line : lines) block += line + u"\n";
    std::vector<int> kinds;
    SnippetType type;
    for (const ustring& line : lines) {
      type = parser->parse(document, {line, type, block}).type;
      kinds.push_back(type.kind);
    }
    return kinds;
  }

  Node node(std::uint64_t index) const { return document->getChildAt(index); }
  bool isHeader(std::uint64_t index) const { return bool(LiveAppLineNode::castFrom(node(index))); }
  /// The task node that is the first child of the node at `index`.
  LiveAppIntegratedInlineNode taskNode(std::uint64_t index) const {
    return taskNodeOf(node(index));
  }
  static LiveAppIntegratedInlineNode taskNodeOf(const Node& top) {
    return LiveAppIntegratedInlineNode::castFrom(top->getChildren().at(0));
  }
  int codeLines(std::uint64_t index) const {
    return taskNode(index)->getLiveTaskData().getNumCodeLines();
  }
  /// The failure ids of the node at `index`.
  std::vector<ustring> failures(std::uint64_t index) const {
    std::vector<ustring> ids;
    for (const ParserFailure& failure : node(index)->getParserFailures()) {
      ids.push_back(failure.getFailureId());
    }
    return ids;
  }

  /// Opens the task "t1" on the first line of the document.
  void openTask() {
    EXPECT_EQ(parse(kOpening, 0, kBlock).type.kind, 3);
    EXPECT_EQ(document->getNumberOfChildren(), 2u);
  }

  const ustring kOpening = u"# <@task#t1>";
  const ustring kBlock = u"# <@task#t1>\n# <@task#t1>";

  std::shared_ptr<FakeElementParser> defaultParser = std::make_shared<FakeElementParser>(u"D", u"");
  std::shared_ptr<FakeProvider> provider = std::make_shared<FakeProvider>();
  std::shared_ptr<FakeAppendix> appendix = std::make_shared<FakeAppendix>();
  std::shared_ptr<TesseraDocument> document = std::make_shared<TesseraDocument>();
  std::unique_ptr<TaskSnippetParserImpl> parser;
};

// Which lines are taken.

TEST_F(TaskSnippetParser, TakesLinesWithATaskMarkerAndThoseOfKind3) {
  EXPECT_TRUE(parser->canParse({u"x # <@task#t>", {}, u""}));
  EXPECT_TRUE(parser->canParse({u"x", {0, 3}, u""}));
  EXPECT_TRUE(parser->canParse({u"x", {9, 3}, u""}));
  for (const int kind : {0, 1, 2, 4, 255}) {
    const auto type = static_cast<std::uint8_t>(kind);
    EXPECT_FALSE(parser->canParse({u"x # <@output#t>", {0, type}, u"# <@task#t>"})) << kind;
    EXPECT_TRUE(parser->canParse({u"# <@task>", {0, type}, u""})) << kind;
  }
}

TEST_F(TaskSnippetParser, LooksForATaskMarkerInTheLineAsItIs) {
  // Only the line without its backslash holds a marker.
  EXPECT_FALSE(parser->canParse({u"%%\\<@task#t>", {}, u""}));
}

TEST_F(TaskSnippetParser, LogsThatItIsAsked) {
  LogRecords records;
  parser->canParse({u"# <@task>", {}, u""});
  parser->canParse({u"x", {}, u""});
  EXPECT_THAT(records.get(), ElementsAre("Checking if parse as task", "Checking if parse as task"));
}

// A task over lines.

TEST_F(TaskSnippetParser, CountsTheLinesFromTheOpeningToTheClosingOne) {
  EXPECT_THAT(parseSnippet({u"# <@task#t1>", u"x = 1", u"# <@task#t1>"}), ElementsAre(3, 3, 0));
  ASSERT_EQ(document->getNumberOfChildren(), 4u);
  EXPECT_TRUE(isHeader(0));
  EXPECT_EQ(codeLines(0), 3);
  for (std::uint64_t line = 1; line < 4; ++line) {
    EXPECT_TRUE(LineNode::castFrom(node(line)));
    EXPECT_THAT(failures(line), IsEmpty());
  }
}

TEST_F(TaskSnippetParser, HeaderHoldsOneTaskNodeWithTheIdOfTheMarker) {
  openTask();
  ASSERT_TRUE(isHeader(0));
  ASSERT_EQ(node(0)->getChildren().size(), 1u);
  ASSERT_TRUE(taskNode(0));
  EXPECT_EQ(taskNode(0)->getId(), u"t1");
  EXPECT_EQ(taskNode(0)->getLiveTaskData(), LiveTaskData());
  EXPECT_TRUE(node(0)->getUuid().is_nil());
  EXPECT_TRUE(taskNode(0)->getUuid().is_nil());
  EXPECT_TRUE(LineNode::castFrom(node(1)));
}

TEST_F(TaskSnippetParser, ReportsTheKindsOfTheLineAndTheTask) {
  EXPECT_EQ(parse(u"# <@task#t1> # <@output>", 0, kBlock).markerTypes,
            (std::set<ustring>{kindText(u"task"), kindText(u"output")}));
  EXPECT_THAT(parse(u"x", 3, kBlock).markerTypes, IsEmpty());
  EXPECT_THAT(parse(u"x # <@control>", 3, kBlock).markerTypes, ElementsAre(kindText(u"control")));
}

TEST_F(TaskSnippetParser, WritesTheCountIntoTheHeaderWhereverItStands) {
  document->addChild(LineNode::Builder(document->getModel()).createLineNode({}));
  parseSnippet({u"# <@task#t1>", u"# <@task#t1>"});
  EXPECT_TRUE(isHeader(1));
  EXPECT_EQ(codeLines(1), 2);
}

TEST_F(TaskSnippetParser, FollowsOneTaskWithTheNext) {
  EXPECT_THAT(parseSnippet({u"# <@task#a>", u"# <@task#a>", u"# <@task#b>", u"# <@task#b>"}),
              ElementsAre(3, 0, 3, 0));
  EXPECT_EQ(codeLines(0), 2);
  EXPECT_EQ(codeLines(3), 2);
  EXPECT_EQ(document->getNumberOfChildren(), 6u);
}

TEST_F(TaskSnippetParser, AClosingMarkerAtTheStartOfALineDoesNotEndTheCallEarly) {
  openTask();
  EXPECT_EQ(parse(u"# <@task#t1>", 3, kBlock).type.kind, 0);
  EXPECT_EQ(document->getNumberOfChildren(), 3u);
}

TEST_F(TaskSnippetParser, ALaterLineWithEqualMarkersIsClosedLikeAnyOther) {
  openTask();
  LogRecords records;
  EXPECT_EQ(parse(u"# <@task#t1> # <@task#t1>", 3, kBlock).type.kind, 0);
  EXPECT_EQ(codeLines(0), 2);
  EXPECT_EQ(document->getNumberOfChildren(), 3u);
  EXPECT_THAT(records.get(), testing::Not(testing::Contains(HasSubstr("same line"))));
}

// A task on one line.

TEST_F(TaskSnippetParser, OnOneLineBehindCodeHasOneLine) {
  EXPECT_THAT(parseSnippet({u"x # <@task#t1> # <@task#t1>"}), ElementsAre(0));
  ASSERT_EQ(document->getNumberOfChildren(), 2u);
  EXPECT_EQ(codeLines(0), 1);
  EXPECT_TRUE(LineNode::castFrom(node(1)));
  EXPECT_THAT(failures(1), IsEmpty());
}

TEST_F(TaskSnippetParser, OnOneLineThatBeginsWithAMarkerHasNoLineAndNoLineNode) {
  LogRecords records;
  const ustring line = u"# <@task#t1> x # <@output> # <@control> # <@task#t1>";
  const ParseResult result = parse(line, 0, line);
  EXPECT_EQ(result.type, (SnippetType{0, 0}));
  EXPECT_THAT(result.markerTypes, ElementsAre(kindText(u"task")));
  ASSERT_EQ(document->getNumberOfChildren(), 1u);
  EXPECT_EQ(codeLines(0), 0);
  EXPECT_THAT(failures(0), IsEmpty());
  EXPECT_THAT(records.get(), testing::Not(testing::Contains("In LineNodeParserService")));
  EXPECT_THAT(provider->calls, IsEmpty());
}

TEST_F(TaskSnippetParser, TheFirstMarkerOfTheLineIsOfAnyElement) {
  const ustring line = u"# <@control> x # <@task#t1> # <@task#t1>";
  EXPECT_EQ(parse(line, 0, line).type.kind, 0);
  EXPECT_EQ(document->getNumberOfChildren(), 1u);
}

TEST_F(TaskSnippetParser, EqualMeansTheWholeMarker) {
  const ustring line = u"x # <@task#t1> # <@task#t1 {\"a\":1}>";
  EXPECT_EQ(parse(line, 0, line).type.kind, 3);
  EXPECT_EQ(document->getNumberOfChildren(), 2u);
  EXPECT_EQ(codeLines(0), 0);
}

TEST_F(TaskSnippetParser, MoreThanTwoEqualMarkersCloseTheTaskToo) {
  EXPECT_EQ(parse(u"x # <@task#t1> # <@task#t1> # <@task#t1>", 0, kBlock).type.kind, 0);
  EXPECT_EQ(codeLines(0), 1);
  // One that differs keeps it open, wherever it stands.
  EXPECT_EQ(parse(u"x # <@task#t1> # <@task#t1> # <@task#t2>", 0, kBlock).type.kind, 3);
}

// Markers without a partner.

TEST_F(TaskSnippetParser, AnIdThatDoesNotStandTwiceInTheBlockIsAFailure) {
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

TEST_F(TaskSnippetParser, TheFailureNamesTheMarkerAndHoldsTheWholeAppendixEntry) {
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

TEST_F(TaskSnippetParser, TheFailureWithoutAnAppendixEntryHoldsNoData) {
  parse(kOpening, 0, u"");
  EXPECT_TRUE(node(0)->getParserFailures()[0].getFailureData().empty());
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

TEST_F(TaskSnippetParser, TheOverlapFailureHoldsTheAppendixEntryToo) {
  appendix->addEntry(Marker(u"%<@task#b {\"x\":true}>"));
  openTask();
  parse(u"# <@task#b>", 3, kBlock);
  EXPECT_EQ(node(2)->getParserFailures()[0].getFailureData(), appendix->entries[0].getData());
}

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

TEST_F(TaskSnippetParser, AsksTheAppendixForTheMarkerOfTheLine) {
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

TEST_F(TaskSnippetParser, AnAnchorWithoutAnIdCountsAsOne) {
  LogRecords records;
  const ustring line = u"# <@task#t1> # <@text:anchor> # <@task#t1>";
  const ParseResult result = parse(line, 0, line);
  EXPECT_EQ(node(0)->getAnchorId(), u"");
  EXPECT_THAT(records.get(), testing::Contains("Found an anchor marker for the task"));
  EXPECT_EQ(result.markerTypes, (std::set<ustring>{kindText(u"task"), kindText(u"text")}));
}

// Decisions and the line parse may see different markers.

TEST_F(TaskSnippetParser, DecidesByTheLineAsItIsAndParsesTheNormalisedOne) {
  // The line as it is holds one task marker; without its backslash it holds another one too.
  const ParseResult result = parse(u"%%\\<@output#o> # <@task#t1>", 0, kBlock);
  EXPECT_EQ(result.markerTypes, (std::set<ustring>{kindText(u"task"), kindText(u"output")}));
  EXPECT_EQ(result.type.kind, 3);

  parser->reset();
  document = std::make_shared<TesseraDocument>();
  // None as it is: no pairing, no failure; the normalised line records the task.
  const ParseResult hidden = parse(u"%%\\<@task#t9>", 0, u"");
  EXPECT_THAT(hidden.markerTypes, ElementsAre(kindText(u"task")));
  EXPECT_THAT(failures(0), IsEmpty());
}

// State that host and parser do not agree on: each row of the table by which a line is decided.

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
  // The id is listed: it opens no task later.
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

  // At the start of the line: no line, no failure.
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

// What the host changes meanwhile.

TEST_F(TaskSnippetParser, KeepsWhatTheHostChangedInTheTaskData) {
  openTask();
  LiveTaskData data = taskNode(0)->getLiveTaskData();
  taskNode(0)->setLiveTaskData(data.setView(u"the host's").setTaskId(u"the host's id"));
  LogRecords records;
  parse(kOpening, 3, kBlock);
  EXPECT_EQ(taskNode(0)->getLiveTaskData(), data.setNumCodeLines(2));
  EXPECT_THAT(records.get(), testing::Contains("the host's id"));
}

TEST_F(TaskSnippetParser, ClosesWithoutAHeaderWhenTheHostTookAnotherDocument) {
  openTask();
  document = std::make_shared<TesseraDocument>();
  LogRecords records;
  EXPECT_EQ(parse(kOpening, 3, kBlock).type.kind, 0);
  EXPECT_EQ(records.get(),
            (Records{"Parsing using the task parser", "End of task found, cleaning up 2",
                     "In LineNodeParserService"}));
  // The task is over all the same.
  EXPECT_EQ(parse(u"x", 3, kBlock).type.kind, 3);
  EXPECT_EQ(document->getNumberOfChildren(), 2u);
}

TEST_F(TaskSnippetParser, WritesTheCountWhereverATaskNodeIsTheFirstChild) {
  const kd::zero::Model model = document->getModel();
  const LineNode line = LineNode::Builder(model).createLineNode({});
  line->getChildrenMutable().add(
      LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode({}));
  taskNodeOf(line)->setLiveTaskData(LiveTaskData().setTaskId(u"of the host").setView(u"v"));
  document->addChild(line);
  LogRecords records;
  // The number left over is 0, where a line of the host stands.
  EXPECT_EQ(parse(u"x # <@task#b> # <@task#b>", 3, u"").type.kind, 0);
  EXPECT_EQ(taskNode(0)->getLiveTaskData(),
            LiveTaskData().setTaskId(u"of the host").setView(u"v").setNumCodeLines(1));
  EXPECT_THAT(records.get(), testing::Contains("of the host"));
}

TEST_F(TaskSnippetParser, WritesTheCountIntoATaskNodeThatAnExtensionMade) {
  provider->elementParsers = {std::make_shared<TaskNodeMaker>(), defaultParser};
  parse(u"abc # <@output [0,3]>", 3, u"");
  ASSERT_TRUE(LineNode::castFrom(node(0)));
  EXPECT_EQ(codeLines(0), 0);
  // No header was added, so the number left over is that of the line.
  EXPECT_EQ(parse(kOpening, 0, kBlock).type.kind, 0);
  EXPECT_EQ(codeLines(0), 2);
}

TEST_F(TaskSnippetParser, TouchesNoNodeWithoutATaskNodeAsFirstChild) {
  const kd::zero::Model model = document->getModel();
  // The node with the number left over has no child, or a child of another kind.
  const LineNode childless = LineNode::Builder(model).createLineNode({});
  document->addChild(childless);
  LogRecords records;
  parse(u"x # <@task#b> # <@task#b>", 3, u"");
  EXPECT_THAT(records.get(), testing::Contains("End of task found, cleaning up 1"));
  EXPECT_TRUE(childless->getChildren().empty());

  document = std::make_shared<TesseraDocument>();
  const LineNode withText = LineNode::Builder(document->getModel()).createLineNode({});
  withText->getChildrenMutable().add(
      PlainTextNode::Builder(document->getModel()).createPlainTextNode({}));
  document->addChild(withText);
  EXPECT_EQ(parse(u"x # <@task#b> # <@task#b>", 3, u"").type.kind, 0);
  EXPECT_EQ(withText->getChildren().size(), 1u);
}

// Reset and life.

TEST_F(TaskSnippetParser, ForgetsTheOpenTaskOnReset) {
  openTask();
  parser->reset();
  EXPECT_EQ(parse(u"x", 3, kBlock).type.kind, 3);
  // It was counted as the first line; the id of the task is forgotten.
  EXPECT_EQ(parse(kOpening, 3, kBlock).type.kind, 3);
  EXPECT_THAT(failures(3), ElementsAre(u"overlapping_task_marker"));
}

TEST_F(TaskSnippetParser, RemembersTheHeaderThatItClosedUntilReset) {
  parseSnippet({u"# <@task#a>", u"# <@task#a>"});
  parseSnippet({u"# <@task#b>", u"# <@task#b>"});
  ASSERT_TRUE(isHeader(3));
  parse(u"x # <@task#c> # <@task#c>", 3, u"");
  EXPECT_EQ(codeLines(0), 2);
  EXPECT_EQ(codeLines(3), 1);
  parser->reset();
  parse(u"x # <@task#c> # <@task#c>", 3, u"");
  EXPECT_EQ(codeLines(0), 1);
}

TEST_F(TaskSnippetParser, SharesItsServicesForItsLife) {
  EXPECT_EQ(provider.use_count(), 2);
  EXPECT_EQ(appendix.use_count(), 2);
  openTask();
  EXPECT_EQ(provider.use_count(), 2);
  EXPECT_EQ(document.use_count(), 1);
  parser.reset();
  EXPECT_EQ(provider.use_count(), 1);
  EXPECT_EQ(appendix.use_count(), 1);
}

TEST_F(TaskSnippetParser, LetsGoOfTheProviderBeforeTheAppendix) {
  const std::weak_ptr<FakeProvider> watched = provider;
  provider.reset();
  bool providerWasGone = false;
  appendix->atEnd = [&] { providerWasGone = watched.expired(); };
  appendix.reset();
  parser.reset();
  EXPECT_TRUE(providerWasGone);
}

TEST_F(TaskSnippetParser, PassesExceptionsOnAndTheDocumentStaysUsable) {
  defaultParser->failsToParse = true;
  EXPECT_THROW(parse(kOpening, 0, kBlock), ServiceFailure);
  EXPECT_EQ(document.use_count(), 1);
  // The header was added before; the host drops the document and resets.
  EXPECT_EQ(document->getNumberOfChildren(), 1u);
  defaultParser->failsToParse = false;
  parser->reset();
  document = std::make_shared<TesseraDocument>();
  EXPECT_THAT(parseSnippet({kOpening, kOpening}), ElementsAre(3, 0));

  appendix->failsAt = 0;
  EXPECT_THROW(parse(kOpening, 0, kBlock), ServiceFailure);
  EXPECT_EQ(document->getNumberOfChildren(), 3u);
}

TEST_F(TaskSnippetParser, WorksTheSameWithoutRecords) {
  const std::vector<ustring> lines{u"x # <@task#a>", u"# <@task#b>", u"# <@task#a> y"};
  EXPECT_THAT(parseSnippet(lines), ElementsAre(3, 3, 0));
  const std::uint64_t quiet = document->getNumberOfChildren();
  parser->reset();
  document = std::make_shared<TesseraDocument>();
  LogRecords records;
  EXPECT_THAT(parseSnippet(lines), ElementsAre(3, 3, 0));
  EXPECT_EQ(document->getNumberOfChildren(), quiet);
}

}  // namespace
