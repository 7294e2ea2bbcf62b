#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserFixture.hpp"
#include "support/LogCollector.hpp"

namespace quenlith::test {
namespace {

using document::kdzero::LineNode;
using syntax::Marker;
using tessera::contentmodel::kdzero::LiveTaskData;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Which lines are accepted.

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

TEST_F(TaskSnippetParser, LooksForATaskMarkerInTheLineAsPassedIn) {
  // Only the normalised line contains a marker.
  EXPECT_FALSE(parser->canParse({u"%%\\<@task#t>", {}, u""}));
}

TEST_F(TaskSnippetParser, LogsEachCheck) {
  LogRecords records;
  parser->canParse({u"# <@task>", {}, u""});
  parser->canParse({u"x", {}, u""});
  EXPECT_THAT(records.get(), ElementsAre("Checking if parse as task", "Checking if parse as task"));
}

// Tasks of several lines.

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

TEST_F(TaskSnippetParser, HeaderContainsOneTaskNodeWithTheIdOfTheMarker) {
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

TEST_F(TaskSnippetParser, WritesTheCountIntoTheHeaderAtAnyIndex) {
  document->addChild(LineNode::Builder(document->getModel()).createLineNode({}));
  parseSnippet({u"# <@task#t1>", u"# <@task#t1>"});
  EXPECT_TRUE(isHeader(1));
  EXPECT_EQ(codeLines(1), 2);
}

TEST_F(TaskSnippetParser, ParsesOneTaskAfterAnother) {
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

TEST_F(TaskSnippetParser, ALaterLineWithEqualMarkersClosesLikeAnyOther) {
  openTask();
  LogRecords records;
  EXPECT_EQ(parse(u"# <@task#t1> # <@task#t1>", 3, kBlock).type.kind, 0);
  EXPECT_EQ(codeLines(0), 2);
  EXPECT_EQ(document->getNumberOfChildren(), 3u);
  EXPECT_THAT(records.get(), testing::Not(testing::Contains(HasSubstr("same line"))));
}

// Tasks on one line.

TEST_F(TaskSnippetParser, OnOneLineAfterCodeHasOneLine) {
  EXPECT_THAT(parseSnippet({u"x # <@task#t1> # <@task#t1>"}), ElementsAre(0));
  ASSERT_EQ(document->getNumberOfChildren(), 2u);
  EXPECT_EQ(codeLines(0), 1);
  EXPECT_TRUE(LineNode::castFrom(node(1)));
  EXPECT_THAT(failures(1), IsEmpty());
}

// Only a marker of a known element is a marker of the line.
TEST_F(TaskSnippetParser, OnOneLineAfterAnUnknownElementHasOneLine) {
  EXPECT_THAT(parseSnippet({u"# <@widget> # <@task#t1> # <@task#t1>"}), ElementsAre(0));
  ASSERT_EQ(document->getNumberOfChildren(), 2u);
  EXPECT_EQ(codeLines(0), 1);
  EXPECT_TRUE(LineNode::castFrom(node(1)));
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

TEST_F(TaskSnippetParser, TheFirstMarkerOfTheLineMayBeOfAnyElement) {
  const ustring line = u"# <@control> x # <@task#t1> # <@task#t1>";
  EXPECT_EQ(parse(line, 0, line).type.kind, 0);
  EXPECT_EQ(document->getNumberOfChildren(), 1u);
}

TEST_F(TaskSnippetParser, MarkersWithDifferentDataAreNotEqual) {
  const ustring line = u"x # <@task#t1> # <@task#t1 {\"a\":1}>";
  EXPECT_EQ(parse(line, 0, line).type.kind, 3);
  EXPECT_EQ(document->getNumberOfChildren(), 2u);
  EXPECT_EQ(codeLines(0), 0);
}

TEST_F(TaskSnippetParser, MoreThanTwoEqualMarkersCloseTheTaskToo) {
  EXPECT_EQ(parse(u"x # <@task#t1> # <@task#t1> # <@task#t1>", 0, kBlock).type.kind, 0);
  EXPECT_EQ(codeLines(0), 1);
  // One different marker keeps it open.
  EXPECT_EQ(parse(u"x # <@task#t1> # <@task#t1> # <@task#t2>", 0, kBlock).type.kind, 3);
}

// Decisions and the line parse may see different markers.

TEST_F(TaskSnippetParser, DecidesByTheLineAsPassedInAndParsesTheNormalisedOne) {
  // The line as passed in contains a task marker; the normalised line also has an output marker.
  const ParseResult result = parse(u"%%\\<@output#o> # <@task#t1>", 0, kBlock);
  EXPECT_EQ(result.markerTypes, (std::set<ustring>{kindText(u"task"), kindText(u"output")}));
  EXPECT_EQ(result.type.kind, 3);

  parser->reset();
  document = std::make_shared<TesseraDocument>();
  // Only the normalised line has a task marker: no pairing and no failure, but its kind is
  // recorded.
  const ParseResult hidden = parse(u"%%\\<@task#t9>", 0, u"");
  EXPECT_THAT(hidden.markerTypes, ElementsAre(kindText(u"task")));
  EXPECT_THAT(failures(0), IsEmpty());
}

// The version of the block.

TEST_F(TaskSnippetParser, TrustsTheVersionOfTheBlock) {
  build::markup::Snippet snippet{kOpening, {}, kBlock, 5};
  EXPECT_EQ(parser->parse(document, snippet).type.kind, 3);
  EXPECT_EQ(parse(kOpening, 3, kBlock).type.kind, 0);
  // Not what a host does. It shows that the block is not compared.
  snippet.auxiliaryText = u"another block";
  EXPECT_EQ(parser->parse(document, snippet).type.kind, 3);
  EXPECT_EQ(parse(kOpening, 3, kBlock).type.kind, 0);
  snippet.blockVersion = 6;
  EXPECT_EQ(parser->parse(document, snippet).type.kind, 0);
}

// Reset and lifetime.

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

TEST_F(TaskSnippetParser, KeepsItsServicesWhileItLives) {
  EXPECT_EQ(provider.use_count(), 2);
  EXPECT_EQ(appendix.use_count(), 2);
  openTask();
  EXPECT_EQ(provider.use_count(), 2);
  EXPECT_EQ(document.use_count(), 1);
  parser.reset();
  EXPECT_EQ(provider.use_count(), 1);
  EXPECT_EQ(appendix.use_count(), 1);
}

TEST_F(TaskSnippetParser, ReleasesTheProviderBeforeTheAppendix) {
  const std::weak_ptr<FakeProvider> watched = provider;
  provider.reset();
  bool providerWasGone = false;
  appendix->atEnd = [&] { providerWasGone = watched.expired(); };
  appendix.reset();
  parser.reset();
  EXPECT_TRUE(providerWasGone);
}

TEST_F(TaskSnippetParser, PropagatesExceptionsAndTheDocumentStaysUsable) {
  defaultParser->failsToParse = true;
  EXPECT_THROW(parse(kOpening, 0, kBlock), ServiceFailure);
  EXPECT_EQ(document.use_count(), 1);
  // The header was added before the exception; the host discards the document and resets.
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
}  // namespace quenlith::test
