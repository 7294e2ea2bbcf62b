#include <cstdint>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "contract/FakeServices.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/Snippet.hpp"
#include "quenlith/build/markup/SnippetType.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"

namespace {

using contract::childrenOf;
using contract::ElementContributor;
using contract::FakeProvider;
using contract::PieceParser;
using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetType;
using quenlith::build::markup::code::LineNodeParserService;
using quenlith::build::markup::services::ParserServicesProvider;
using quenlith::syntax::Marker;
using Texts = std::vector<ustring>;

static_assert(
    std::is_constructible_v<LineNodeParserService, const std::shared_ptr<ParserServicesProvider>&>);
static_assert(std::has_virtual_destructor_v<LineNodeParserService>);
static_assert(std::is_same_v<decltype(std::declval<LineNodeParserService&>().parseLine(
                                 std::declval<std::shared_ptr<TesseraDocument>>(),
                                 std::declval<const Snippet&>(), std::declval<ParseResult>())),
                             ParseResult>);

class LineNodeParserContract : public testing::Test {
 protected:
  ParseResult parse(const ustring& line) {
    const std::shared_ptr<ParserServicesProvider> shared = provider;
    LineNodeParserService service(shared);
    ParseResult result;
    result.type = SnippetType{5, 6};
    result.flag = true;
    return service.parseLine(document, Snippet{line, {0, 0}, u""}, result);
  }

  Node lastLine() const { return document->getChildAt(document->getNumberOfChildren() - 1); }

  Texts piecesOf(const ustring& line) {
    parse(line);
    return childrenOf(lastLine());
  }

  // Accepts the markers of `element` before the default parser.
  void accept(const ustring& element) {
    provider->codeElementParsers.insert(provider->codeElementParsers.begin(),
                                        std::make_shared<PieceParser>(element));
  }

  std::size_t failuresOf(const ustring& line) {
    parse(line);
    return lastLine()->getParserFailuresMutable().size();
  }

  std::shared_ptr<FakeProvider> provider = std::make_shared<FakeProvider>();
  std::shared_ptr<TesseraDocument> document = std::make_shared<TesseraDocument>();
};

TEST_F(LineNodeParserContract, AnEmptyLineHasOneEmptyChild) {
  const ParseResult result = parse(u"");
  ASSERT_EQ(document->getNumberOfChildren(), 1U);
  EXPECT_EQ(childrenOf(lastLine()), Texts{u""});
  EXPECT_TRUE(result.markerTypes.empty());
}

TEST_F(LineNodeParserContract, TypeAndFlagPassThrough) {
  const ParseResult result = parse(u"x = 1 # <@output#o1>");
  EXPECT_EQ(result.type.group, 5);
  EXPECT_EQ(result.type.kind, 6);
  EXPECT_TRUE(result.flag);
  EXPECT_EQ(result.markerTypes, std::set<ustring>{Marker(u"output").toString()});
}

TEST_F(LineNodeParserContract, TheServiceSharesTheProviderAndReleasesIt) {
  const std::shared_ptr<ParserServicesProvider> shared = provider;
  const long before = shared.use_count();
  {
    const LineNodeParserService service(shared);
    EXPECT_EQ(shared.use_count(), before + 1);
  }
  EXPECT_EQ(shared.use_count(), before);
}

TEST_F(LineNodeParserContract, OneServiceParsesManyLines) {
  LineNodeParserService service(provider);
  const Snippet snippet{u"x", {0, 0}, u""};
  service.parseLine(document, snippet, ParseResult());
  service.parseLine(document, snippet, ParseResult());
  EXPECT_EQ(document->getNumberOfChildren(), 2U);
  EXPECT_EQ(document.use_count(), 1);
}

TEST_F(LineNodeParserContract, ABackslashAfterTwoPercentSignsIsDropped) {
  EXPECT_EQ(piecesOf(u"a %%\\ b %%\\"), Texts{u"a %% b %%"});
  EXPECT_EQ(piecesOf(u"%%%\\"), Texts{u"%%%"});
}

TEST_F(LineNodeParserContract, PlacesCountInTheNormalisedLine) {
  accept(u"output");
  EXPECT_EQ(piecesOf(u"%%\\ab //<@output [2,4]>"), (Texts{u"%%", u"<ab>", u" "}));
}

TEST_F(LineNodeParserContract, ALineOfOnlyAHandledMarkerHasAnEmptyChild) {
  EXPECT_EQ(piecesOf(u"# <@output#o1>"), Texts{u""});
}

TEST_F(LineNodeParserContract, AValidRangeCutsTheLine) {
  EXPECT_EQ(piecesOf(u"abcdefg # <@output [2,5]> h"), (Texts{u"ab", u"fg  h"}));
  accept(u"output");
  EXPECT_EQ(piecesOf(u"abcdefg # <@output [2,5]> h"), (Texts{u"ab", u"<cde>", u"fg  h"}));
}

TEST_F(LineNodeParserContract, TheFirstAcceptingParserMakesThePiece) {
  const auto first = std::make_shared<PieceParser>(u"output");
  const auto second = std::make_shared<PieceParser>(u"output");
  provider->codeElementParsers.insert(provider->codeElementParsers.begin(), {first, second});
  parse(u"abc # <@output#o1 [0,2]>");
  ASSERT_EQ(first->pieces.size(), 1U);
  EXPECT_TRUE(second->pieces.empty());
  EXPECT_EQ(first->pieces[0].text, u"ab");
  EXPECT_EQ(first->pieces[0].marker->getId(), u"o1");
  EXPECT_EQ(first->pieces[0].range->first, 0U);
  EXPECT_EQ(first->pieces[0].range->second, 2U);
}

TEST_F(LineNodeParserContract, AnUnhandledControlMarkerStaysTextAndIsRecorded) {
  const ustring line = u"abc # <@control#c1 [0,2]>";
  const ParseResult result = parse(line);
  EXPECT_EQ(childrenOf(lastLine()), Texts{line});
  EXPECT_EQ(result.markerTypes, std::set<ustring>{Marker(u"control").toString()});
}

TEST_F(LineNodeParserContract, EveryFeatureIsRecordedUnderItsElement) {
  const ParseResult result = parse(u"#<@control> #<@output> #<@task> #<@text:anchor> #<@text>");
  EXPECT_EQ(result.markerTypes,
            (std::set<ustring>{Marker(u"control").toString(), Marker(u"output").toString(),
                               Marker(u"task").toString(), Marker(u"text").toString()}));
  EXPECT_TRUE(parse(u"#<@text#a>").markerTypes.empty());
}

TEST_F(LineNodeParserContract, TheLastAnchorWithAnIdWinsUnlessTheLineHasATask) {
  parse(u"x #<@text:anchor#one> #<@text:anchor#two>");
  EXPECT_EQ(lastLine()->getAnchorId(), u"two");
  parse(u"x #<@text:anchor#one> #<@text:anchor>");
  EXPECT_EQ(lastLine()->getAnchorId(), u"one");
  parse(u"x #<@text:anchor#one> #<@task#t1>");
  EXPECT_EQ(lastLine()->getAnchorId(), u"");
}

// Each marker's own text begins at code unit 10 and is 16 to 18 units long.
TEST_F(LineNodeParserContract, ARangeIsCheckedAgainstLineAndMarkers) {
  const ustring begin = u"0123456789#<@output ";
  for (const char16_t* const bad :
       {u"[0,0]", u"[4,2]", u"[5,5]", u"[6,3]", u"[3,11]", u"[8,99]", u"[12,14]", u"[10,12]"}) {
    EXPECT_EQ(failuresOf(begin + bad + u">"), 1U) << testing::PrintToString(ustring(bad));
  }
  for (const char16_t* const good : {u"[3,10]", u"[0,10]", u"[0,1]"}) {
    EXPECT_EQ(failuresOf(begin + good + u">"), 0U) << testing::PrintToString(ustring(good));
  }
  // Past the end of the line, with no marker before it.
  EXPECT_EQ(failuresOf(u"#<@output [19,29]>0123456789"), 1U);
}

TEST_F(LineNodeParserContract, ARangeAfterAMarkerBeginsPastItsEnd) {
  // "#<@output [nn,28]>" covers the code units 0 to 17.
  EXPECT_EQ(failuresOf(u"#<@output [18,28]>0123456789"), 1U);
  EXPECT_EQ(failuresOf(u"#<@output [19,28]>0123456789"), 0U);
}

TEST_F(LineNodeParserContract, AnUnusableRangeIsRecordedOnTheLine) {
  parse(u"abcdefgh #<@text:anchor#a1 [7,3]>");
  const auto& failures = lastLine()->getParserFailuresMutable();
  ASSERT_EQ(failures.size(), 1U);
  EXPECT_EQ(failures.at(0).getFailureId(), u"invalid_position_data");
  EXPECT_EQ(failures.at(0).getMarkerInfo().getFeatureId(), u"text");
  EXPECT_EQ(failures.at(0).getMarkerInfo().getSubFeatureId(), u"anchor");
  EXPECT_EQ(failures.at(0).getMarkerInfo().getMarkerId(), u"a1");
  const auto& data = failures.at(0).getFailureData();
  ASSERT_EQ(data.size(), 1U);
  EXPECT_EQ(data.begin()->first, "position");
  const std::vector<foundation::json::Value>& range =
      data.begin()->second.get<std::vector<foundation::json::Value>>();
  ASSERT_EQ(range.size(), 2U);
  EXPECT_EQ(range[0].get<double>(), 7.0);
  EXPECT_EQ(range[1].get<double>(), 3.0);
  EXPECT_EQ(childrenOf(lastLine()), Texts{u"abcdefgh "});
}

TEST_F(LineNodeParserContract, EveryApplicableContributorIsUsed) {
  provider->contributors = {std::make_shared<ElementContributor>(u"output", u"first"),
                            std::make_shared<ElementContributor>(u"control", u"never"),
                            std::make_shared<ElementContributor>(u"output", u"second")};
  parse(u"x #<@output#o1>");
  auto& contributions = lastLine()->getContributorDataMutable();
  ASSERT_EQ(contributions.size(), 2U);
  EXPECT_EQ(contributions.at(0)->getContributingFeature(), u"first");
  EXPECT_EQ(contributions.at(1)->getContributingFeature(), u"second");
  EXPECT_EQ(contributions.at(0)->getLineDataListMutable().size(), 1U);
  EXPECT_EQ(contributions.at(1)->getLineDataListMutable().size(), 1U);
}

TEST_F(LineNodeParserContract, AnExceptionLeavesTheDocumentWithoutTheLine) {
  provider->failing = true;
  EXPECT_THROW(parse(u"x"), std::runtime_error);
  EXPECT_EQ(document->getNumberOfChildren(), 0U);
}

}  // namespace
