#include <cstdint>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "contract/FakeServices.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/Snippet.hpp"
#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"

namespace {

using contract::FakeAppendix;
using contract::FakeProvider;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetParser;
using quenlith::build::markup::code::CodeSnippetParserImpl;
using quenlith::build::markup::code::TaskSnippetParserImpl;
using quenlith::build::markup::services::ParserServicesProvider;
using quenlith::shared::appendix::AppendixBuilder;
using quenlith::syntax::Marker;
using tessera::contentmodel::kdzero::LiveTaskData;
using Provider = std::shared_ptr<ParserServicesProvider>;

static_assert(std::is_base_of_v<SnippetParser, CodeSnippetParserImpl>);
static_assert(std::is_base_of_v<SnippetParser, TaskSnippetParserImpl>);
static_assert(std::is_constructible_v<CodeSnippetParserImpl, const Provider&>);
static_assert(
    std::is_constructible_v<TaskSnippetParserImpl, std::shared_ptr<AppendixBuilder>, Provider>);
static_assert(std::is_constructible_v<TaskSnippetParserImpl,
                                      const std::shared_ptr<AppendixBuilder>&, const Provider&>);

// Two markers of one task, as the block of text that surrounds a line.
const ustring kPair = u"#<@task#t1>\n#<@task#t1>";

class SnippetParsersContract : public testing::Test {
 protected:
  ParseResult parseAsTask(const ustring& line, std::uint8_t kind, const ustring& block = kPair) {
    return task.parse(document, Snippet{line, {0, kind}, block});
  }

  Node node(std::uint64_t index) const { return document->getChildAt(index); }

  LiveAppIntegratedInlineNode taskNode(std::uint64_t index) const {
    return LiveAppIntegratedInlineNode::castFrom(node(index)->getChildren().at(0));
  }

  std::shared_ptr<FakeProvider> provider = std::make_shared<FakeProvider>();
  std::shared_ptr<FakeAppendix> appendix = std::make_shared<FakeAppendix>();
  std::shared_ptr<TesseraDocument> document = std::make_shared<TesseraDocument>();
  CodeSnippetParserImpl code{provider};
  TaskSnippetParserImpl task{appendix, provider};
};

TEST_F(SnippetParsersContract, TheDefaultParserTakesEverySnippet) {
  EXPECT_TRUE(code.canParse(Snippet{u"", {0, 0}, u""}));
  EXPECT_TRUE(code.canParse(Snippet{u"x", {0, 3}, u""}));
  EXPECT_TRUE(code.canParse(Snippet{u"#<@task#t1>", {0, 0}, kPair}));
}

TEST_F(SnippetParsersContract, TheDefaultParserReportsPlainCode) {
  SnippetParser& parser = code;
  const ParseResult plain = parser.parse(document, Snippet{u"x = 1", {7, 3}, u""});
  EXPECT_EQ(plain.type.group, 0);
  EXPECT_EQ(plain.type.kind, 0);
  EXPECT_FALSE(plain.flag);
  EXPECT_TRUE(plain.markerTypes.empty());
  const ParseResult marked = parser.parse(document, Snippet{u"x #<@output>", {0, 0}, u""});
  EXPECT_EQ(marked.markerTypes, std::set<ustring>{Marker(u"output").toString()});
  parser.reset();
  EXPECT_EQ(document->getNumberOfChildren(), 2U);
  EXPECT_EQ(document.use_count(), 1);
}

TEST_F(SnippetParsersContract, TheDefaultParserKeepsItsProviderWhileItLives) {
  const Provider shared = provider;
  const long before = shared.use_count();
  {
    CodeSnippetParserImpl parser(shared);
    EXPECT_EQ(shared.use_count(), before + 1);
    parser.parse(document, Snippet{u"x", {0, 0}, u""});
    EXPECT_EQ(shared.use_count(), before + 1);
  }
  EXPECT_EQ(shared.use_count(), before);
}

TEST_F(SnippetParsersContract, AnExceptionOfTheProviderIsPropagatedAndTheDocumentReleased) {
  provider->failing = true;
  const Snippet snippet{u"x", {0, 0}, u""};
  EXPECT_THROW(code.parse(document, snippet), std::runtime_error);
  EXPECT_THROW(task.parse(document, snippet), std::runtime_error);
  EXPECT_EQ(document.use_count(), 1);
}

TEST_F(SnippetParsersContract, TheTaskParserTakesTaskMarkersAndOpenTasks) {
  EXPECT_TRUE(task.canParse(Snippet{u"x #<@task#t1>", {0, 0}, u""}));
  EXPECT_TRUE(task.canParse(Snippet{u"x", {0, 3}, u""}));
  EXPECT_FALSE(task.canParse(Snippet{u"x", {0, 2}, u""}));
  EXPECT_FALSE(task.canParse(Snippet{u"x #<@output>", {3, 0}, u""}));
}

TEST_F(SnippetParsersContract, ATaskOfThreeLinesIsCounted) {
  const ParseResult opening = parseAsTask(u"#<@task#t1>", 0);
  EXPECT_EQ(opening.type.group, 0);
  EXPECT_EQ(opening.type.kind, 3);
  EXPECT_EQ(opening.markerTypes, std::set<ustring>{Marker(u"task").toString()});
  EXPECT_EQ(parseAsTask(u"x = 1", 3).type.kind, 3);
  EXPECT_EQ(parseAsTask(u"#<@task#t1>", 3).type.kind, 0);
  ASSERT_EQ(document->getNumberOfChildren(), 4U);
  EXPECT_TRUE(document::kdzero::LiveAppLineNode::castFrom(node(0)));
  EXPECT_EQ(taskNode(0)->getId(), u"t1");
  EXPECT_EQ(taskNode(0)->getLiveTaskData().getNumCodeLines(), 3);
  EXPECT_EQ(document.use_count(), 1);
}

TEST_F(SnippetParsersContract, TwoEqualMarkersCloseTheTaskOnTheirLine) {
  const ustring both = u"#<@task#t1> #<@task#t1>";
  EXPECT_EQ(parseAsTask(u"x " + both, 0, u"x " + both).type.kind, 0);
  ASSERT_EQ(document->getNumberOfChildren(), 2U);
  EXPECT_EQ(taskNode(0)->getLiveTaskData().getNumCodeLines(), 1);
  EXPECT_EQ(parseAsTask(both, 0, both).type.kind, 0);
  ASSERT_EQ(document->getNumberOfChildren(), 3U);
  EXPECT_EQ(taskNode(2)->getLiveTaskData().getNumCodeLines(), 0);
}

TEST_F(SnippetParsersContract, AnAnchorOfTheOpeningLineNamesTheHeader) {
  const ParseResult result = parseAsTask(u"#<@task#t1> #<@text:anchor#here>", 0);
  EXPECT_EQ(node(0)->getAnchorId(), u"here");
  EXPECT_EQ(node(1)->getAnchorId(), u"");
  EXPECT_EQ(result.markerTypes.count(Marker(u"text").toString()), 1U);
}

TEST_F(SnippetParsersContract, AMarkerWithoutPartnerIsAFailureOfItsLine) {
  for (const ustring& block : {ustring(u"#<@task#t1>"), kPair + u"\n#<@task#t1>"}) {
    EXPECT_EQ(parseAsTask(u"#<@task#t1>", 0, block).type.kind, 0);
  }
  ASSERT_EQ(document->getNumberOfChildren(), 2U);
  for (std::uint64_t i = 0; i < 2; ++i) {
    const auto& failures = node(i)->getParserFailuresMutable();
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_EQ(failures.at(0).getFailureId(), u"missing_task_marker_pair");
    EXPECT_EQ(failures.at(0).getMarkerInfo().getFeatureId(), u"task");
    EXPECT_EQ(failures.at(0).getMarkerInfo().getSubFeatureId(), u"");
    EXPECT_EQ(failures.at(0).getMarkerInfo().getMarkerId(), u"t1");
    EXPECT_TRUE(failures.at(0).getFailureData().empty());
  }
}

TEST_F(SnippetParsersContract, AnotherTaskInsideATaskOverlaps) {
  const ustring block = u"#<@task#t1>\n#<@task#t2>\n#<@task#t1>\n#<@task#t2>";
  appendix->addEntry(Marker(u"#<@task#t2 {\"text\":\"Fit\",\"n\":1}>"));
  EXPECT_EQ(parseAsTask(u"#<@task#t1>", 0, block).type.kind, 3);
  EXPECT_EQ(parseAsTask(u"#<@task#t2>", 3, block).type.kind, 3);
  EXPECT_EQ(parseAsTask(u"#<@task#t1>", 3, block).type.kind, 0);
  EXPECT_EQ(parseAsTask(u"#<@task#t2>", 0, block).type.kind, 0);
  ASSERT_EQ(document->getNumberOfChildren(), 5U);
  EXPECT_EQ(taskNode(0)->getLiveTaskData().getNumCodeLines(), 3);
  ASSERT_EQ(node(2)->getParserFailuresMutable().size(), 1U);
  EXPECT_EQ(node(2)->getParserFailuresMutable().at(0).getFailureId(), u"overlapping_task_marker");
  EXPECT_EQ(node(2)->getParserFailuresMutable().at(0).getFailureData().size(), 2U);
  ASSERT_EQ(node(4)->getParserFailuresMutable().size(), 1U);
  EXPECT_EQ(node(4)->getParserFailuresMutable().at(0).getFailureId(), u"missing_task_marker_pair");
  task.reset();
  EXPECT_EQ(parseAsTask(u"#<@task#t2>", 0, block).type.kind, 3);
}

TEST_F(SnippetParsersContract, AMarkerOfAnOpenKindOverlapsWhileNoTaskIsOpen) {
  EXPECT_EQ(parseAsTask(u"#<@task#t1>", 2).type.kind, 3);
  ASSERT_EQ(document->getNumberOfChildren(), 1U);
  ASSERT_EQ(node(0)->getParserFailuresMutable().size(), 1U);
  EXPECT_EQ(node(0)->getParserFailuresMutable().at(0).getFailureId(), u"overlapping_task_marker");
}

TEST_F(SnippetParsersContract, APlainLineOfKindThreeIsCountedWithoutAHeader) {
  const ParseResult result = parseAsTask(u"x", 3);
  EXPECT_EQ(result.type.kind, 3);
  EXPECT_EQ(result.markerTypes, std::set<ustring>{Marker(u"task").toString()});
  EXPECT_EQ(document->getNumberOfChildren(), 1U);
}

TEST_F(SnippetParsersContract, TheAppendixEntryFillsTheTaskData) {
  appendix->addEntry(Marker(
      u"#<@task#t1 {\"taskClassDefFile\":\"fit.json\",\"uniqueId\":\"u1\",\"text\":\"caf\u00E9\","
      u"\"run\":\"r\",\"autorun\":true,\"collapsed\":\"true\",\"outputs\":\"o\",\"variablesMap\":"
      u"\"v\","
      u"\"appState\":\"s\",\"view\":\"w\",\"extra\":1}>"));
  parseAsTask(u"#<@task#t1>", 0);
  const LiveTaskData data = taskNode(0)->getLiveTaskData();
  EXPECT_EQ(data.getAppIdentifier(), u"fit.json");
  EXPECT_EQ(data.getTaskId(), u"u1");
  EXPECT_EQ(data.getText(), u"caf\u00E9");
  EXPECT_EQ(data.getExecutionModel(), u"r");
  EXPECT_EQ(data.getAutoRun(), u"");
  EXPECT_EQ(data.getCollapsed(), u"true");
  EXPECT_EQ(data.getAppVariables(), u"o");
  EXPECT_EQ(data.getAppVariablesUserMap(), u"v");
  EXPECT_EQ(data.getAppState(), u"s");
  EXPECT_EQ(data.getView(), u"w");
  ASSERT_EQ(appendix->asked.size(), 1U);
  EXPECT_EQ(appendix->asked[0].getId(), u"t1");
}

TEST_F(SnippetParsersContract, WithoutAnEntryTheTaskDataIsEmpty) {
  parseAsTask(u"#<@task#t1>", 0);
  const LiveTaskData data = taskNode(0)->getLiveTaskData();
  for (const ustring& field :
       {ustring(data.getAppIdentifier()), ustring(data.getTaskId()), ustring(data.getText()),
        ustring(data.getExecutionModel()), ustring(data.getAutoRun()), ustring(data.getCollapsed()),
        ustring(data.getAppVariables()), ustring(data.getAppVariablesUserMap()),
        ustring(data.getAppState()), ustring(data.getView())}) {
    EXPECT_EQ(field, u"");
  }
}

TEST_F(SnippetParsersContract, TheTaskParserReleasesWhatItWasGiven) {
  const Provider shared = provider;
  const long providerBefore = shared.use_count();
  const long appendixBefore = appendix.use_count();
  {
    const TaskSnippetParserImpl parser(appendix, shared);
    EXPECT_EQ(shared.use_count(), providerBefore + 1);
    EXPECT_EQ(appendix.use_count(), appendixBefore + 1);
  }
  EXPECT_EQ(shared.use_count(), providerBefore);
  EXPECT_EQ(appendix.use_count(), appendixBefore);
}

}  // namespace
