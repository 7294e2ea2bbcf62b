#include <gtest/gtest.h>

#include "conformance/ParserHost.hpp"

namespace quenlith::conformance {
namespace {

using Texts = std::vector<ustring>;

WorldPlan planWith(const AnswerRule& rule) {
  WorldPlan plan;
  plan.codeElementParsers = {rule};
  return plan;
}

TEST(LineRules, AnEmptyLineHasOneChildOfEmptyTextAndLeavesMarkerTypesAsTheyWere) {
  ParserHost host;
  ParseResult given;
  given.type = {4, 9};
  given.flag = true;
  given.markerTypes = {u"kept"};
  const ParseResult result = host.parseLine(u"", given);
  EXPECT_EQ(result.markerTypes, given.markerTypes);
  EXPECT_EQ(result.type, given.type);
  EXPECT_TRUE(result.flag);
  ASSERT_EQ(host.nodes().size(), 1U);
  EXPECT_EQ(childTexts(host.nodes()[0]), Texts{u""});
  EXPECT_EQ(host.nodes()[0].kind, NodeKind::kLine);
}

TEST(LineRules, EveryPercentPercentBackslashIsTwoPercentsInTheText) {
  ParserHost host;
  EXPECT_EQ(childTexts(host.onlyLine(u"a%%\\b%%\\")), Texts{u"a%%b%%"});
  EXPECT_EQ(childTexts(host.onlyLine(u"%%\\\\")), Texts{u"%%\\"}) << "the result is not read again";
  EXPECT_EQ(childTexts(host.onlyLine(u"%\\%%%\\")), Texts{u"%\\%%%"});
}

TEST(LineRules, EveryPercentPercentBackslashIsTwoPercentsForMarkers) {
  ParserHost host;
  EXPECT_EQ(childTexts(host.onlyLine(u"x%%\\<@output#o>y")), Texts{u"xy"}) << "made";
  EXPECT_EQ(childTexts(host.onlyLine(u"%<@output {\"s\":\"%%\\\"\"}>")),
            Texts{u"%<@output {\"s\":\"%%\"\"}>"})
      << "broken";
}

TEST(LineRules, EveryPercentPercentBackslashIsTwoPercentsForPlacesAndRanges) {
  ParserHost host(planWith(takes(u"output")));
  // The range covers "ab" of the normalised line "%%abc ...".
  const NodeRecord line = host.onlyLine(u"%%\\abc # <@output [2,4]>");
  EXPECT_TRUE(line.failures.empty());
  EXPECT_EQ(line.children.size(), 3U);
  const auto trace = host.takeTrace();
  EXPECT_NE(std::find(trace.begin(), trace.end(), "parse 0 \"ab\" \"%<@output>\" [2,4)"),
            trace.end());
  // The normalised line has six units before the marker: seven would reach into it.
  EXPECT_EQ(host.onlyLine(u"%%\\abc # <@output [2,6]>").failures.size(), 0U);
  EXPECT_EQ(host.onlyLine(u"%%\\abc # <@output [2,7]>").failures.size(), 1U);
}

TEST(LineRules, ALineOfOneHandledMarkerHasOneEmptyChild) {
  ParserHost host(planWith(takes(u"control")));
  EXPECT_EQ(childTexts(host.onlyLine(u"# <@output#o>")), Texts{u""});
  EXPECT_EQ(childTexts(host.onlyLine(u"# <@task#t>")), Texts{u""});
  EXPECT_EQ(childTexts(host.onlyLine(u"# <@text:anchor#t>")), Texts{u""});
  EXPECT_EQ(childTexts(host.onlyLine(u"# <@control#c>")), Texts{u""});
}

TEST(LineRules, ARangeGoesToTheFirstParserThatAccepts) {
  WorldPlan plan;
  plan.codeElementParsers = {takes(u"control"), takes(u"output"), takes(u"output")};
  ParserHost host(plan);
  host.onlyLine(u"abcdefg # <@output#o [2,5]> hi");
  EXPECT_EQ(
      host.takeTrace(),
      (std::vector<std::string>{
          "log In LineNodeParserService", "getLineContributorDataParsers", "getCodeElementParsers",
          "canParse 0 \"%<@output#o>\" no", "canParse 1 \"%<@output#o>\" yes",
          "parse 3 \"ab\" no marker no range", "canParse 0 \"%<@output#o>\" no",
          "canParse 1 \"%<@output#o>\" yes", "parse 1 \"cde\" \"%<@output#o>\" [2,5)",
          "parse 3 \"fg  hi\" no marker no range"}));
}

TEST(LineRules, ARangeThatNoParserAcceptsGivesNoNode) {
  ParserHost host;
  EXPECT_EQ(childTexts(host.onlyLine(u"abcdefg # <@output#o [2,5]> hi")),
            (Texts{u"ab", u"fg  hi"}));
}

TEST(LineRules, ALineWhollyOwnedByARangeThatNoParserAcceptsHasNoChild) {
  ParserHost host;
  EXPECT_TRUE(host.onlyLine(u"abc# <@output [0,3]>").children.empty());
}

TEST(LineRules, ARangeThatCannotBeUsedStaysPlainTextAndIsAFailure) {
  ParserHost host(planWith(takes(u"output")));
  const std::vector<ustring> ranges = {u"[5,5]",  u"[6,3]",  u"[0,99]",
                                       u"[9,12]", u"[3,10]", u"[0,18446744073709551615]"};
  for (const ustring& range : ranges) {
    const NodeRecord line = host.onlyLine(u"abcdefg # <@output#o " + range + u"> hi");
    EXPECT_EQ(childTexts(line), Texts{u"abcdefg  hi"});
    ASSERT_EQ(line.failures.size(), 1U);
    EXPECT_EQ(line.failures[0].failureId, u"invalid_position_data");
    EXPECT_EQ(line.failures[0].featureId, u"output");
    EXPECT_EQ(line.failures[0].markerId, u"o");
  }
}

TEST(LineRules, AnAnchorWithoutAnIdSetsNothing) {
  ParserHost host;
  EXPECT_EQ(host.onlyLine(u"x # <@text:anchor>").anchorId, u"");
  EXPECT_EQ(host.takeMessages(), std::vector<std::string>{"In LineNodeParserService"});
}

TEST(LineRules, AnAnchorSetsItsIdOnlyOnALineWithoutATaskMarker) {
  ParserHost host;
  EXPECT_EQ(host.onlyLine(u"x # <@text:anchor#top>").anchorId, u"top");
  EXPECT_EQ(host.onlyLine(u"x # <@text:anchor#top> # <@task#t>").anchorId, u"");
  EXPECT_EQ(host.onlyLine(u"x # <@task#t> # <@text:anchor#top>").anchorId, u"");
  EXPECT_EQ(host.onlyLine(u"x # <@text#top>").anchorId, u"") << "a text marker of another type";
}

TEST(LineRules, OfSeveralAnchorsTheLastOneWithAnIdWins) {
  ParserHost host;
  const ustring line = u"# <@text:anchor#a> # <@text:anchor#b> # <@text:anchor>";
  EXPECT_EQ(host.onlyLine(line).anchorId, u"b");
  EXPECT_EQ(host.takeMessages(), (std::vector<std::string>{"In LineNodeParserService",
                                                           "Setting anchor id on the line node",
                                                           "Setting anchor id on the line node"}));
}

TEST(LineRules, AMarkerThatNobodyHandlesStaysTextButItsFeatureIsRecorded) {
  WorldPlan plan;
  plan.contributorParsers = {takes(u"control")};
  ParserHost host(plan);
  const ustring text = u"a # <@control#c [9,2]> b";
  const ParseResult result = host.parseLine(text);
  EXPECT_EQ(result.markerTypes, (std::set<ustring>{Marker(u"control").toString()}));
  const NodeRecord line = host.nodes().at(0);
  EXPECT_EQ(childTexts(line), Texts{text});
  EXPECT_TRUE(line.failures.empty());
  EXPECT_TRUE(line.contributions.empty());
}

TEST(LineRules, APlainTextMarkerRecordsNothing) {
  ParserHost host;
  EXPECT_TRUE(host.parseLine(u"# <@text:note#a>").markerTypes.empty());
  EXPECT_EQ(childTexts(host.nodes().at(0)), Texts{u"# <@text:note#a>"});
}

TEST(LineRules, APieceEndsWhereverTheOwnerChanges) {
  ParserHost host(planWith(takes(u"output")));
  host.onlyLine(u"abcdef # <@output#o [0,6]> # <@output#i [2,4]>");
  std::vector<std::string> pieces;
  for (const std::string& event : host.takeTrace()) {
    if (event.rfind("parse ", 0) == 0) pieces.push_back(event);
  }
  EXPECT_EQ(pieces,
            (std::vector<std::string>{
                "parse 0 \"ab\" \"%<@output#o>\" [0,6)", "parse 0 \"cd\" \"%<@output#i>\" [2,4)",
                "parse 0 \"ef\" \"%<@output#o>\" [0,6)", "parse 1 \"  \" no marker no range"}));
}

TEST(LineRules, AFailingServiceLeavesTheDocumentWithoutTheLine) {
  WorldPlan plan;
  plan.throwOneIn = 1;
  ParserHost host(plan);
  EXPECT_THROW(host.parseLine(u"x"), oracle::ServiceFailure);
  EXPECT_TRUE(host.nodes().empty());
  EXPECT_EQ(host.document.use_count(), 1);
}

TEST(LineRules, WithoutADefaultParserALineThatNeedsItIsNotAdded) {
  WorldPlan plan = planWith(takes(u"output"));
  plan.hasDefaultParser = false;
  ParserHost host(plan);
  for (const ustring& text : Texts{u"", u"x", u"# <@output>", u"ab# <@output [0,1]>"}) {
    try {
      host.parseLine(text);
      ADD_FAILURE() << "the line was parsed";
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find("default code element parser"), std::string::npos);
    }
  }
  EXPECT_TRUE(host.nodes().empty());
  host.parseLine(u"ab# <@output [0,2]>");
  EXPECT_EQ(host.nodes().size(), 1U) << "not needed where every piece has a parser";
}

}  // namespace
}  // namespace quenlith::conformance
