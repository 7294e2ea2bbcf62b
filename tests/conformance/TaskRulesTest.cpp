#include <gtest/gtest.h>

#include <algorithm>

#include "conformance/TaskHost.hpp"
#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"

namespace quenlith::conformance {
namespace {

using document::kdzero::LineNode;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::LiveAppLineNode;
using document::kdzero::PlainTextNode;
using Bytes = std::vector<std::uint8_t>;
using Kinds = std::vector<int>;
using Summary = std::vector<std::string>;

TEST(TaskRules, CodeBeforeTwoEqualMarkersGivesAHeaderAndALineOfOneCodeLine) {
  TaskHost host;
  const ustring line = u"fit(x)  # <@task#a> # <@task#a>";
  EXPECT_EQ(host.parseLines({line}), Kinds{0});
  EXPECT_EQ(host.summary(), (Summary{"header a 1", "line"}));
}

TEST(TaskRules, ALineThatBeginsWithTheFirstOfTwoEqualMarkersGivesTheHeaderAlone) {
  TaskHost host;
  EXPECT_EQ(host.parseLines({u"# <@task#a> # <@task#a> # <@output>"}), Kinds{0});
  EXPECT_EQ(host.summary(), Summary{"header a 0"});
  // Not even the output marker is recorded, and the line is not parsed.
  EXPECT_EQ(
      host.takeMessages(),
      (Summary{"Parsing using the task parser", "Task marker found for first time",
               "Adding task marker to the list of seen markers", "Parsing live task appendix data",
               "finding Appendix Entry", "Adding Header node to tessera doc", "",
               "Closing task found on same line, closing it now",
               "End of task found, cleaning up 0", ""}));
}

TEST(TaskRules, AnotherMarkerAtTheStartCountsAsTheFirstMarkerOfTheLine) {
  TaskHost host;
  host.parseLines({u"# <@output> # <@task#a> # <@task#a>"});
  EXPECT_EQ(host.summary(), Summary{"header a 0"});
}

TEST(TaskRules, AnIdThatOccursOnceOrThreeTimesOpensNoTask) {
  for (const std::size_t count : {0U, 1U, 3U, 4U}) {
    TaskHost host;
    const auto result = host.parse(u"x # <@task#a>", 0, blockOf({u"a"}, count));
    EXPECT_EQ(result.type, (SnippetType{0, 0})) << count;
    EXPECT_EQ(host.summary(), Summary{"line missing_task_marker_pair"}) << count;
  }
}

TEST(TaskRules, OpenCodeCloseAreThreeLines) {
  TaskHost host;
  EXPECT_EQ(host.parseLines({u"# <@task#a>", u"x = 1", u"# <@task#a>"}), (Kinds{3, 3, 0}));
  EXPECT_EQ(host.summary(), (Summary{"header a 3", "line", "line", "line"}));
}

TEST(TaskRules, AMarkerOfAnotherIdInsideATaskOverlapsAndIsCounted) {
  TaskHost host;
  EXPECT_EQ(host.parseLines({u"# <@task#a>", u"# <@task#b>", u"# <@task#a>"}), (Kinds{3, 3, 0}));
  EXPECT_EQ(host.summary(),
            (Summary{"header a 3", "line", "line overlapping_task_marker", "line"}));
}

TEST(TaskRules, AMarkerWhileIdleOverlapsWhenTheKindIsAboveOne) {
  for (const std::uint8_t kind : Bytes{2, 3, 4, 255}) {
    TaskHost host;
    EXPECT_EQ(host.parse(u"# <@task#a>", kind, blockOf({u"a"})).type.kind, 3);
    EXPECT_EQ(host.summary(), Summary{"line overlapping_task_marker"});
    host.parser.reset();
    EXPECT_EQ(host.parse(u"# <@task#a>", 0, blockOf({u"a"})).type.kind, 3);
    EXPECT_EQ(host.summary().at(1), "header a 0") << "reset forgets the overlap";
  }
}

TEST(TaskRules, AnOverlappingIdIsUnpairedUntilReset) {
  TaskHost host;
  host.parse(u"# <@task#a>", 3, blockOf({u"a"}));
  EXPECT_EQ(host.parse(u"# <@task#a>", 0, blockOf({u"a"})).type.kind, 3) << "still counting";
  EXPECT_EQ(host.summary().at(1), "line missing_task_marker_pair");
  EXPECT_EQ(host.parse(u"# <@task#b>", 0, blockOf({u"b"})).type.kind, 0) << "closed by a pair";
}

TEST(TaskRules, TheCountIsSixteenBitsWideAndWrapsToIdle) {
  WorldPlan plan;
  plan.logging = false;
  TaskHost host(plan);
  host.parse(u"# <@task#a>", 0, blockOf({u"a"}));
  for (int line = 2; line < 65'536; ++line) host.parse(u"x", 3);
  EXPECT_EQ(host.parse(u"x", 3).type.kind, 0);
  EXPECT_EQ(host.taskAt(0).numCodeLines, 0) << "nothing was closed";
  EXPECT_EQ(host.parse(u"# <@task#a>", 3).type.kind, 3) << "the id of the task is left over";
  EXPECT_EQ(host.summary().at(65'537), "header a 0");
}

TEST(TaskRules, APlainLineWhileIdleIsCountedWithoutAHeader) {
  TaskHost host;
  const ParseResult result = host.parse(u"x = 1", 3);
  EXPECT_EQ(result.type, (SnippetType{0, 3}));
  EXPECT_EQ(result.markerTypes, (std::set<ustring>{Marker(u"task").toString()}));
  EXPECT_EQ(host.summary(), Summary{"line"});
  EXPECT_EQ(
      host.takeMessages(),
      (Summary{"Parsing using the task parser", "Task marker found for first time",
               "Adding task marker to the list of seen markers", "In LineNodeParserService"}));
}

TEST(TaskRules, CanParseTakesTaskMarkersAndExactlyKindThree) {
  TaskHost host;
  EXPECT_TRUE(host.parser.canParse(snippetOf(u"x # <@task#a>")));
  EXPECT_TRUE(host.parser.canParse(snippetOf(u"x", 3)));
  for (const std::uint8_t kind : Bytes{0, 1, 2, 4, 255}) {
    EXPECT_FALSE(host.parser.canParse(snippetOf(u"x # <@output>", kind)));
  }
  EXPECT_EQ(host.takeMessages(), Summary(7, "Checking if parse as task"));
}

TEST(TaskRules, TheHeaderHasTheAnchorAndTheOpeningLineHasNone) {
  TaskHost host;
  const ustring opening = u"x # <@text:anchor#top> # <@task#a>";
  const ParseResult result = host.parse(opening, 0, blockOf({u"a"}));
  EXPECT_EQ(host.summary(), (Summary{"header a 0 @top", "line"}));
  EXPECT_EQ(result.markerTypes,
            (std::set<ustring>{Marker(u"task").toString(), Marker(u"text").toString()}));
}

TEST(TaskRules, DecisionsAreMadeOnTheLineAsPassedIn) {
  TaskHost host;
  // Only the normalised line has the marker: the task parser sees a plain line.
  EXPECT_EQ(host.parse(u"%%\\<@task#a>", 0, blockOf({u"a"})).type.kind, 3);
  EXPECT_EQ(host.summary(), Summary{"line"});
  // Only the line as passed in has it.
  host.parser.reset();
  host.parse(u"x # <@task#a {\"s\":\"%%\\\"\"}>", 0, blockOf({u"a"}));
  EXPECT_EQ(host.summary(), (Summary{"line", "header a 0", "line"}));
}

TEST(TaskRules, AClosingMarkerAtTheStartOfALaterLineDoesNotReturnEarly) {
  TaskHost host;
  EXPECT_EQ(host.parseLines({u"# <@task#a>", u"# <@task#a> rest"}), (Kinds{3, 0}));
  EXPECT_EQ(host.nodes().at(2).children.at(0).text, u" rest");
}

template <class Top>
std::uint16_t countOfTaskBelow(const Top& top, TaskHost& host) {
  const auto& model = host.document->getModel();
  top->getChildrenMutable().add(
      LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode({}));
  host.document->addChild(top);
  host.parse(u"x # <@task#b> # <@task#b>", 3);
  return host.taskAt(0).numCodeLines;
}

TEST(TaskRules, ClosingWritesTheCountBelowATopLevelNodeOfAnyKind) {
  TaskHost line;
  EXPECT_EQ(countOfTaskBelow(LineNode::Builder(line.document->getModel()).createLineNode({}), line),
            1);
  TaskHost text;
  EXPECT_EQ(countOfTaskBelow(
                PlainTextNode::Builder(text.document->getModel()).createPlainTextNode({}), text),
            1);
  TaskHost header;
  EXPECT_EQ(
      countOfTaskBelow(
          LiveAppLineNode::Builder(header.document->getModel()).createLiveAppLineNode({}), header),
      1);
}

TEST(TaskRules, ThreeEqualMarkersCloseOnTheirLineAsTwoDo) {
  TaskHost host;
  const ustring line = u"x # <@task#a> # <@task#a> # <@task#a>";
  EXPECT_EQ(host.parse(line, 0, blockOf({u"a"})).type.kind, 0);
  EXPECT_EQ(host.summary(), (Summary{"header a 1", "line"}));
}

TEST(TaskRules, OneUnequalMarkerAmongEqualOnesKeepsTheTaskOpen) {
  TaskHost host;
  const ustring line = u"x # <@task#a> # <@task#a> # <@task#b>";
  EXPECT_EQ(host.parse(line, 0, blockOf({u"a"})).type.kind, 3);
}

TEST(TaskRules, AnAnchorWithoutAnIdIsFoundForTheHeaderToo) {
  TaskHost host;
  host.parse(u"x # <@task#a> # <@text:anchor>", 0, blockOf({u"a"}));
  const auto messages = host.takeMessages();
  EXPECT_EQ(std::count(messages.begin(), messages.end(), "Found an anchor marker for the task"), 1);
}

TEST(TaskRules, ATextMarkerOfAnotherTypeSetsNoHeaderAnchor) {
  TaskHost host;
  const auto result = host.parse(u"x # <@task#a> # <@text:note#n>", 0, blockOf({u"a"}));
  EXPECT_EQ(host.summary(), (Summary{"header a 0", "line"}));
  EXPECT_EQ(result.markerTypes, std::set<ustring>{Marker(u"task").toString()});
}

TEST(TaskRules, MarkersWithEqualIdsAndDifferentDataAreNotEqual) {
  TaskHost host;
  EXPECT_EQ(host.parseLines({u"x # <@task#a> # <@task#a {\"k\":1}>"}), Kinds{3});
  EXPECT_EQ(host.summary(), (Summary{"header a 0", "line"}));
}

TEST(TaskRules, ABlockChangedInPlaceIsAnotherBlock) {
  TaskHost host;
  Snippet snippet = snippetOf(u"x # <@task#a> # <@task#a>", 0, blockOf({u"a"}));
  EXPECT_EQ(host.parser.parse(host.document, snippet).type.kind, 0);
  EXPECT_EQ(host.summary().at(0), "header a 1");
  snippet.auxiliaryText[ustring(u"# <@task#").size()] = u'b';
  host.parser.parse(host.document, snippet);
  EXPECT_EQ(host.summary().back(), "line missing_task_marker_pair");
}

TEST(TaskRules, TheDestructorReleasesTheProviderBeforeTheAppendixBuilder) {
  std::vector<std::string> released;
  ParserHost host;
  auto* provider = new oracle::WorldProvider(host.world);
  auto* appendix = new oracle::WorldAppendix(host.world);
  {
    build::markup::code::TaskSnippetParserImpl parser(
        std::shared_ptr<oracle::WorldAppendix>(appendix,
                                               [&](oracle::WorldAppendix* ended) {
                                                 released.emplace_back("appendix builder");
                                                 delete ended;
                                               }),
        std::shared_ptr<oracle::WorldProvider>(provider, [&](oracle::WorldProvider* ended) {
          released.emplace_back("provider");
          delete ended;
        }));
  }
  EXPECT_EQ(released, (std::vector<std::string>{"provider", "appendix builder"}));
}

}  // namespace
}  // namespace quenlith::conformance
