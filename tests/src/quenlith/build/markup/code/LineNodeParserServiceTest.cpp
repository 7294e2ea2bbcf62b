#include "quenlith/build/markup/code/LineNodeParserService.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "fakes/ParserFakes.hpp"
#include "foundation/core/except/IException.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "support/LogCollector.hpp"
#include "support/nilUuid.hpp"

namespace {

using document::kdzero::LineNode;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using foundation::json::Value;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::code::CodeElement;
using quenlith::build::markup::code::PlainTextNodeParserImpl;
using quenlith::syntax::Marker;
using quenlith::test::childTexts;
using quenlith::test::FakeContributor;
using quenlith::test::FakeElementParser;
using quenlith::test::FakeProvider;
using quenlith::test::kindText;
using quenlith::test::LogRecords;
using quenlith::test::ServiceFailure;
using testing::ElementsAre;
using testing::IsEmpty;
using Service = quenlith::build::markup::code::LineNodeParserService;
using Texts = std::vector<ustring>;
using Range = std::optional<std::pair<std::uint64_t, std::uint64_t>>;

/// Tests with the default parser "D", which is a fake, and no others.
class LineNodeParserService : public testing::Test {
 protected:
  LineNodeParserService() { provider->elementParsers = {defaultParser}; }

  ParseResult parse(const ustring& line, ParseResult result = {}) {
    Service service(provider);
    return service.parseLine(document, Snippet{line, {}, {}}, std::move(result));
  }
  /// Parses `line` and returns its node.
  Node nodeOf(const ustring& line) {
    parse(line);
    return document->getChildAt(document->getNumberOfChildren() - 1);
  }
  Texts textsOf(const ustring& line) { return childTexts(nodeOf(line)); }

  /// Adds a parser in front of the default one.
  std::shared_ptr<FakeElementParser> addElementParser(const ustring& name, const ustring& element) {
    auto parser = std::make_shared<FakeElementParser>(name, element);
    provider->elementParsers.insert(provider->elementParsers.end() - 1, parser);
    return parser;
  }
  std::shared_ptr<FakeContributor> addContributor(const ustring& name, const ustring& element) {
    auto parser = std::make_shared<FakeContributor>(name, element);
    provider->contributors.push_back(parser);
    return parser;
  }

  std::shared_ptr<FakeElementParser> defaultParser = std::make_shared<FakeElementParser>(u"D", u"");
  std::shared_ptr<FakeProvider> provider = std::make_shared<FakeProvider>();
  std::shared_ptr<TesseraDocument> document = std::make_shared<TesseraDocument>();
};

/// Makes a node when it is asked for the first list.
class NodeMakingProvider final : public quenlith::build::markup::services::ParserServicesProvider {
 public:
  explicit NodeMakingProvider(kd::zero::Model model) : model(std::move(model)) {}

  std::vector<std::shared_ptr<quenlith::build::markup::contributordata::LineContributorDataParser>>
  getLineContributorDataParsers() override {
    made = LineNode::Builder(model).createLineNode(quenlith::test::kNil);
    return {};
  }
  std::vector<std::shared_ptr<quenlith::build::markup::code::CodeElementParser>>
  getCodeElementParsers() override {
    return {std::make_shared<PlainTextNodeParserImpl>()};
  }

  LineNode made;

 private:
  kd::zero::Model model;
};

TEST_F(LineNodeParserService, MakesTheLineNodeBeforeItAsksTheProvider) {
  const auto asked = std::make_shared<NodeMakingProvider>(document->getModel());
  Service(asked).parseLine(document, Snippet{u"x", {}, {}}, {});
  // The elements of a new model are at ascending addresses.
  EXPECT_LT(document->getChildAt(0).get(), asked->made.get());
}

// Lines without markers.

TEST_F(LineNodeParserService, AppendsOneLineNodePerLine) {
  document->addChild(LineNode::Builder(document->getModel()).createLineNode({}));
  const Node first = nodeOf(u"x = 1");
  const Node second = nodeOf(u"y = 2");
  ASSERT_EQ(document->getNumberOfChildren(), 3u);
  EXPECT_EQ(document->getChildAt(1), first);
  EXPECT_TRUE(LineNode::castFrom(first));
  EXPECT_TRUE(first->getUuid().is_nil());
  EXPECT_EQ(childTexts(first), Texts{u"D(x = 1)"});
  EXPECT_EQ(childTexts(second), Texts{u"D(y = 2)"});
}

TEST_F(LineNodeParserService, GivesTheDefaultParserOnlyTheText) {
  parse(u"x = 1");
  ASSERT_EQ(defaultParser->parsed.size(), 1u);
  EXPECT_EQ(defaultParser->parsed[0].text, u"x = 1");
  EXPECT_FALSE(defaultParser->parsed[0].marker);
  EXPECT_FALSE(defaultParser->parsed[0].range);
}

TEST_F(LineNodeParserService, WithTheBuiltInDefaultParserCreatesPlainTextNodes) {
  provider->elementParsers = {std::make_shared<PlainTextNodeParserImpl>()};
  EXPECT_EQ(textsOf(u"x = 1"), Texts{u"x = 1"});
  EXPECT_EQ(textsOf(u""), Texts{u""});
  EXPECT_EQ(textsOf(u"a # <@output#o> b"), Texts{u"a  b"});
}

TEST_F(LineNodeParserService, GivesAnEmptyLineOneChildOfEmptyText) {
  const auto contributor = addContributor(u"c", u"task");
  ParseResult before;
  before.markerTypes = {u"already there"};
  const ParseResult result = parse(u"", before);
  EXPECT_EQ(childTexts(document->getChildAt(0)), Texts{u"D()"});
  EXPECT_THAT(result.markerTypes, ElementsAre(u"already there"));
  EXPECT_THAT(contributor->asked, IsEmpty());
  EXPECT_FALSE(defaultParser->parsed[0].marker);
}

TEST_F(LineNodeParserService, ReadsTheTextOfTheSnippetOnly) {
  Service service(provider);
  const Snippet snippet{u"x", {7, 3}, u"# <@task#t1> # <@task#t1>"};
  const ParseResult result = service.parseLine(document, snippet, {});
  EXPECT_EQ(childTexts(document->getChildAt(0)), Texts{u"D(x)"});
  EXPECT_THAT(result.markerTypes, IsEmpty());
  EXPECT_EQ(result.type.kind, 0);
}

TEST_F(LineNodeParserService, PassesTypeAndFlagThrough) {
  ParseResult before;
  before.type = {9, 200};
  before.flag = true;
  before.markerTypes = {u"already there"};
  const ParseResult result = parse(u"# <@task#t>", before);
  EXPECT_EQ(result.type.group, 9);
  EXPECT_EQ(result.type.kind, 200);
  EXPECT_TRUE(result.flag);
  EXPECT_EQ(result.markerTypes, (std::set<ustring>{kindText(u"task"), u"already there"}));
}

TEST_F(LineNodeParserService, GetsEachListOnceAndContributorsFirst) {
  parse(u"");
  EXPECT_THAT(provider->calls, ElementsAre("contributors", "element parsers"));
  provider->calls.clear();
  parse(u"a # <@output#o [0,1]> # <@task#t>");
  EXPECT_THAT(provider->calls, ElementsAre("contributors", "element parsers"));
}

// Escaped leaders.

TEST_F(LineNodeParserService, DropsTheBackslashOfAnEscapedLeader) {
  EXPECT_EQ(textsOf(u"a %%\\ b %%\\"), Texts{u"D(a %% b %%)"});
  EXPECT_EQ(textsOf(u"%%\\\\"), Texts{u"D(%%\\)"});
}

TEST_F(LineNodeParserService, FindsMarkersThatTheDroppedBackslashMakes) {
  const ParseResult result = parse(u"ab%%\\<@output#o [0,2]>");
  EXPECT_THAT(result.markerTypes, ElementsAre(kindText(u"output")));
  // The range counts the units of the normalised line, in which the marker begins at 2.
  EXPECT_THAT(document->getChildAt(0)->getParserFailures(), IsEmpty());
  EXPECT_THAT(childTexts(document->getChildAt(0)), IsEmpty());
}

TEST_F(LineNodeParserService, CountsPlacesWithoutTheDroppedBackslash) {
  const auto parser = addElementParser(u"O", u"output");
  EXPECT_EQ(textsOf(u"%%\\abcdef # <@output#o [2,5]>"), (Texts{u"D(%%)", u"O(abc)", u"D(def )"}));
}

// Markers without a range.

TEST_F(LineNodeParserService, JoinsPlainTextAroundADroppedMarker) {
  EXPECT_EQ(textsOf(u"before # <@output#o> behind"), Texts{u"D(before  behind)"});
  EXPECT_EQ(textsOf(u"# <@output> # <@task> x"), Texts{u"D(  x)"});
}

TEST_F(LineNodeParserService, GivesALineOfOneHandledMarkerOneChildOfEmptyText) {
  EXPECT_EQ(textsOf(u"# <@output#o>"), Texts{u"D()"});
  EXPECT_EQ(textsOf(u"# <@task#t>"), Texts{u"D()"});
  EXPECT_EQ(textsOf(u"// <@text:anchor#a>"), Texts{u"D()"});
}

TEST_F(LineNodeParserService, LeavesTheTextOfAnUnhandledMarkerInItsPlace) {
  const auto contributor = addContributor(u"c", u"control");
  const ParseResult result = parse(u"a # <@control#c [0,99]> b");
  const Node node = document->getChildAt(0);
  EXPECT_EQ(childTexts(node), Texts{u"D(a # <@control#c [0,99]> b)"});
  EXPECT_THAT(result.markerTypes, ElementsAre(kindText(u"control")));
  EXPECT_THAT(node->getParserFailures(), IsEmpty());
  EXPECT_THAT(contributor->asked, IsEmpty());

  EXPECT_EQ(textsOf(u"# <@text#t>"), Texts{u"D(# <@text#t>)"});
  EXPECT_THAT(parse(u"# <@text:note#t>").markerTypes, IsEmpty());
}

TEST_F(LineNodeParserService, HandlesAMarkerThatAnotherParserAccepts) {
  const auto parser = addElementParser(u"C", u"control");
  EXPECT_EQ(textsOf(u"ab # <@control#c [0,2]>"), (Texts{u"C(ab)", u"D( )"}));
  EXPECT_EQ(textsOf(u"# <@control#c>"), Texts{u"D()"});
}

TEST_F(LineNodeParserService, RecordsTheKindOfEveryMarker) {
  const ParseResult result =
      parse(u"# <@control> # <@output> # <@task> # <@text:anchor> # <@text> # <@output#2>");
  EXPECT_EQ(result.markerTypes, (std::set<ustring>{kindText(u"control"), kindText(u"output"),
                                                   kindText(u"task"), kindText(u"text")}));
}

// Ranges.

TEST_F(LineNodeParserService, CutsTheLineAtAValidRange) {
  const auto parser = addElementParser(u"O", u"output");
  EXPECT_EQ(textsOf(u"abcdefg # <@output#o [2,5]> h"), (Texts{u"D(ab)", u"O(cde)", u"D(fg  h)"}));
  ASSERT_EQ(parser->parsed.size(), 1u);
  EXPECT_EQ(parser->parsed[0].marker, Marker(u"%<@output#o>"));
  EXPECT_EQ(parser->parsed[0].range, Range(std::pair(2, 5)));
}

TEST_F(LineNodeParserService, DropsTheTextOfARangeThatNoParserAccepts) {
  EXPECT_EQ(textsOf(u"abcdefg # <@output#o [2,5]>"), (Texts{u"D(ab)", u"D(fg )"}));
  EXPECT_EQ(textsOf(u"abcd# <@task#t [0,2]>"), Texts{u"D(cd)"});
}

TEST_F(LineNodeParserService, GivesALineThatARangeOwnsEntirelyNoEmptyChild) {
  EXPECT_THAT(textsOf(u"abcd# <@output#o [0,4]>"), IsEmpty());
  EXPECT_THAT(defaultParser->parsed, IsEmpty());
}

TEST_F(LineNodeParserService, UsesTheFirstParserThatAccepts) {
  const auto first = addElementParser(u"X", u"control");
  const auto second = addElementParser(u"O", u"output");
  const auto third = addElementParser(u"P", u"output");
  EXPECT_EQ(textsOf(u"ab# <@output#o [0,2]>"), Texts{u"O(ab)"});
  EXPECT_EQ(first->asked.size(), 2u);
  EXPECT_EQ(second->asked.size(), 2u);
  EXPECT_THAT(third->asked, IsEmpty());
  EXPECT_THAT(third->parsed, IsEmpty());
}

TEST_F(LineNodeParserService, NeverAsksTheDefaultParserWhetherItAccepts) {
  defaultParser->failsToAnswer = true;
  EXPECT_EQ(textsOf(u"ab# <@output#o [0,1]> # <@control>").size(), 1u);
  EXPECT_THAT(defaultParser->asked, IsEmpty());
}

TEST_F(LineNodeParserService, CountsRangesInUnitsOf16Bits) {
  const auto parser = addElementParser(u"O", u"output");
  EXPECT_EQ(textsOf(u"\U0001F600\u00FCx# <@output#o [2,3]>"),
            (Texts{u"D(\U0001F600)", u"O(\u00FC)", u"D(x)"}));
  EXPECT_EQ(textsOf(u"\U0001F600x# <@output#o [0,1]>"), (Texts{u"O(\xD83D)", u"D(\xDE00x)"}));
}

TEST_F(LineNodeParserService, ALaterRangeInsideAnEarlierOneGivesThreePieces) {
  const auto parser = addElementParser(u"O", u"output");
  EXPECT_EQ(textsOf(u"0123456789# <@output#a [1,9]># <@output#b [4,6]>"),
            (Texts{u"D(0)", u"O(123)", u"O(45)", u"O(678)", u"D(9)"}));
  ASSERT_EQ(parser->parsed.size(), 3u);
  for (const std::size_t i : {std::size_t{0}, std::size_t{2}}) {
    EXPECT_EQ(parser->parsed[i].marker->getId(), u"a");
    EXPECT_EQ(parser->parsed[i].range, Range(std::pair(1, 9)));
  }
  EXPECT_EQ(parser->parsed[1].marker->getId(), u"b");
  EXPECT_EQ(parser->parsed[1].range, Range(std::pair(4, 6)));
}

TEST_F(LineNodeParserService, EqualMarkersAreSeparateOwners) {
  const auto parser = addElementParser(u"O", u"output");
  EXPECT_EQ(textsOf(u"abcd# <@output#o [0,2]># <@output#o [2,4]>"), (Texts{u"O(ab)", u"O(cd)"}));
  EXPECT_EQ(parser->parsed[0].marker, parser->parsed[1].marker);
}

TEST_F(LineNodeParserService, ARangeThatCannotBeUsedIsAFailureAndStaysPlainText) {
  const auto parser = addElementParser(u"O", u"output");
  for (const char16_t* range : {u"[5,5]", u"[6,3]", u"[0,99]", u"[0,0]", u"[3,8]", u"[3,12]",
                                u"[0,18446744073709551615]", u"[18446744073709551615,2]"}) {
    const ustring line = u"abcdef # <@output#o " + ustring(range) + u"> z";
    const Node node = nodeOf(line);
    EXPECT_EQ(childTexts(node), Texts{u"D(abcdef  z)"});
    ASSERT_EQ(node->getParserFailures().size(), 1u) << fl::i18n::ustring_to_utf8(line);
    EXPECT_EQ(node->getParserFailures()[0].getFailureId(), u"invalid_position_data");
  }
  EXPECT_THAT(parser->parsed, IsEmpty());
}

TEST_F(LineNodeParserService, ARangeMayEndWhereItsMarkerBeginsAndReachTheEndOfTheLine) {
  const auto parser = addElementParser(u"O", u"output");
  EXPECT_EQ(textsOf(u"ab# <@output#o [0,2]>"), Texts{u"O(ab)"});
  // "# <@output#o [20,22]>" ends at 21: a range may not begin there, but may end with the line.
  EXPECT_THAT(nodeOf(u"# <@output#o [21,23]>xy")->getParserFailures().size(), 1u);
  EXPECT_EQ(textsOf(u"# <@output#o [22,23]>xy"), (Texts{u"D(x)", u"O(y)"}));
  EXPECT_EQ(nodeOf(u"# <@output#o [22,24]>xy")->getParserFailures().size(), 1u);
}

TEST_F(LineNodeParserService, ARangeThatTouchesAnUnhandledMarkerIsAFailure) {
  const Node node = nodeOf(u"# <@control#c> abc # <@output#o [0,4]>");
  ASSERT_EQ(node->getParserFailures().size(), 1u);
  EXPECT_EQ(node->getParserFailures()[0].getMarkerInfo().getMarkerId(), u"o");
}

TEST_F(LineNodeParserService, FailuresAreInTheOrderOfTheMarkers) {
  const Node node = nodeOf(u"# <@output#a [9,1]> # <@task#b [9,2]> # <@output#a [9,1]>");
  ASSERT_EQ(node->getParserFailures().size(), 2u);
  EXPECT_EQ(node->getParserFailures()[0].getMarkerInfo().getMarkerId(), u"a");
  EXPECT_EQ(node->getParserFailures()[1].getMarkerInfo().getMarkerId(), u"b");
}

// Anchors.

TEST_F(LineNodeParserService, SetsTheAnchorOfTheLine) {
  EXPECT_EQ(nodeOf(u"# <@text:anchor#intro>")->getAnchorId(), u"intro");
  EXPECT_EQ(nodeOf(u"x = 1")->getAnchorId(), u"");
}

TEST_F(LineNodeParserService, TheLastAnchorWithAnIdCounts) {
  EXPECT_EQ(nodeOf(u"# <@text:anchor#a> # <@text:anchor#b> # <@text:anchor>")->getAnchorId(), u"b");
  EXPECT_EQ(nodeOf(u"# <@text:anchor>")->getAnchorId(), u"");
}

TEST_F(LineNodeParserService, SetsNoAnchorOnALineWithATask) {
  EXPECT_EQ(nodeOf(u"# <@text:anchor#a> # <@task#t>")->getAnchorId(), u"");
}

TEST_F(LineNodeParserService, SetsNoAnchorForATextMarkerOfAnotherType) {
  const auto parser = addElementParser(u"T", u"text");
  EXPECT_EQ(nodeOf(u"# <@text:note#a>")->getAnchorId(), u"");
}

// Contributor data.

TEST_F(LineNodeParserService, EachApplicableParserContributesForEachMarker) {
  addContributor(u"one", u"output");
  addContributor(u"no", u"control");
  addContributor(u"two", u"output");
  const Node node = nodeOf(u"# <@output#a> # <@task#t> # <@output#b>");
  std::vector<std::string> found;
  for (const auto& contributed : node->getContributorData()) {
    ASSERT_EQ(contributed->getLineDataList().size(), 1u);
    const auto& data = contributed->getLineDataList()[0]->getData();
    EXPECT_EQ(data.at("by"),
              Value(fl::i18n::ustring_to_utf8(ustring(contributed->getContributingFeature()))));
    EXPECT_TRUE(contributed->getUuid().is_nil());
    found.push_back(data.at("by").get<std::string>() + " " + data.at("to").get<std::string>());
  }
  EXPECT_THAT(found, ElementsAre("one a", "two a", "one b", "two b"));
}

TEST_F(LineNodeParserService, EmptyLineDataIsContributedAsAnEmptyList) {
  addContributor(u"one", u"output")->makesNothing = true;
  const Node node = nodeOf(u"# <@output#a>");
  ASSERT_EQ(node->getContributorData().size(), 1u);
  EXPECT_EQ(node->getContributorData()[0]->getContributingFeature(), u"one");
  EXPECT_TRUE(node->getContributorData()[0]->getLineDataList().empty());
}

TEST_F(LineNodeParserService, AsksContributorsAboutHandledMarkersOnly) {
  const auto contributor = addContributor(u"one", u"output");
  parse(u"# <@control#c> # <@output#a> # <@text#x> # <@text:anchor#b> # <@task#t>");
  ASSERT_EQ(contributor->asked.size(), 3u);
  EXPECT_EQ(contributor->asked[0].getId(), u"a");
  EXPECT_EQ(contributor->asked[1].getId(), u"b");
  EXPECT_EQ(contributor->asked[2].getId(), u"t");
}

// Without a default parser.

TEST_F(LineNodeParserService, NeedsNoDefaultParserWithoutPlainText) {
  addElementParser(u"O", u"output");
  provider->elementParsers.back() = nullptr;
  EXPECT_EQ(textsOf(u"abcd# <@output#o [0,4]>"), Texts{u"O(abcd)"});
}

TEST_F(LineNodeParserService, ThrowsWhenTheDefaultParserIsNeededAndThereIsNone) {
  provider->elementParsers.back() = nullptr;
  for (const char16_t* line : {u"", u"x", u"# <@output>", u"x# <@output>"}) {
    try {
      parse(line);
      FAIL() << "it was parsed";
    } catch (const std::runtime_error& failure) {
      EXPECT_THAT(
          failure.what(),
          testing::HasSubstr("no default code element parser was found: call setFramework"));
    }
  }
  EXPECT_EQ(document->getNumberOfChildren(), 0u);
}

// Failing collaborators.

TEST_F(LineNodeParserService, AcceptsAParserThatReturnsNoNode) {
  defaultParser->makesNothing = true;
  EXPECT_THAT(textsOf(u"x"), IsEmpty());
}

/// Replaces the text of a snippet at each question.
class ChangingParser final : public quenlith::build::markup::code::CodeElementParser {
 public:
  ChangingParser(Snippet& snippet, ustring replacement)
      : snippet(snippet), replacement(std::move(replacement)) {}

  bool canParse(const Marker& /*marker*/) override {
    snippet.text = ustring();
    snippet.text.shrink_to_fit();
    snippet.text = replacement;
    return false;
  }
  Node parse(const kd::zero::Model& /*model*/, const CodeElement& /*element*/) override {
    return {};
  }

 private:
  Snippet& snippet;
  ustring replacement;
};

TEST_F(LineNodeParserService, ParsesTheLineAsItWasWhenAServiceChangesTheSnippet) {
  const ustring line = u"abcdefgh # <@output#p [0,1]> # <@output#o [4,6]> and so on";
  for (const ustring& replacement : {ustring(), ustring(u"x"), ustring(1000, u'y')}) {
    Snippet snippet{line, {}, {}};
    const auto changing = std::make_shared<ChangingParser>(snippet, replacement);
    const auto output = std::make_shared<FakeElementParser>(u"O", u"output");
    provider->elementParsers = {changing, output, defaultParser};
    Service(provider).parseLine(document, snippet, {});
    const Node node = document->getChildAt(document->getNumberOfChildren() - 1);
    EXPECT_EQ(childTexts(node), (Texts{u"O(a)", u"D(bcd)", u"O(ef)", u"D(gh   and so on)"}));
  }
}

TEST_F(LineNodeParserService, LeavesTheDocumentUnchangedWhenACollaboratorThrows) {
  const auto parser = addElementParser(u"O", u"output");
  const auto contributor = addContributor(u"one", u"output");
  const ustring line = u"ab c # <@output#o [0,2]>";
  struct Fault {
    bool& fails;
    const char* name;
  };
  const std::vector<Fault> faults{
      {provider->failsForContributors, "the list of contributors"},
      {provider->failsForElementParsers, "the list of element parsers"},
      {parser->failsToAnswer, "canParse"},
      {parser->failsToParse, "parse of a marker's piece"},
      {contributor->failsToAnswer, "isApplicable"},
      {contributor->failsToParse, "parse of contributor data"},
      {defaultParser->failsToParse, "parse of plain text"},
  };
  const Node before = nodeOf(u"before");
  for (const Fault& fault : faults) {
    SCOPED_TRACE(fault.name);
    fault.fails = true;
    EXPECT_THROW(parse(line), ServiceFailure);
    fault.fails = false;
    EXPECT_EQ(document->getNumberOfChildren(), 1u);
    EXPECT_EQ(document->getChildAt(0), before);
    EXPECT_EQ(document.use_count(), 1);
    EXPECT_EQ(provider.use_count(), 1);
    EXPECT_EQ(parser.use_count(), 2);
    EXPECT_EQ(contributor.use_count(), 2);
    EXPECT_EQ(defaultParser.use_count(), 2);
  }
  EXPECT_EQ(textsOf(line), (Texts{u"O(ab)", u"D( c )"}));
}

TEST_F(LineNodeParserService, LeavesTheDocumentUnchangedWhenLineDataIsOfAnotherModel) {
  addContributor(u"one", u"output")->otherModel = kd::zero::Model::create();
  EXPECT_THROW(parse(u"# <@output#o>"), foundation::core::except::IException);
  EXPECT_EQ(document->getNumberOfChildren(), 0u);
}

TEST_F(LineNodeParserService, ReleasesEverythingAfterACall) {
  const auto parser = addElementParser(u"O", u"output");
  parse(u"ab c # <@output#o [0,2]>");
  EXPECT_EQ(document.use_count(), 1);
  EXPECT_EQ(provider.use_count(), 1);
  EXPECT_EQ(parser.use_count(), 2);
}

TEST_F(LineNodeParserService, KeepsItsProviderWhileItLives) {
  {
    const Service service(provider);
    EXPECT_EQ(provider.use_count(), 2);
  }
  EXPECT_EQ(provider.use_count(), 1);
}

// Log records.

TEST_F(LineNodeParserService, LogsItsStepsInOrder) {
  const LogRecords records;
  addContributor(u"one", u"text");
  parse(u"# <@text:anchor#a [0,99]>");
  EXPECT_THAT(records.get(),
              ElementsAre("In LineNodeParserService", "Building a bad position parser failure",
                          "Setting anchor id on the line node",
                          "Found an applicable line contributor data parser"));
}

TEST_F(LineNodeParserService, LogsAPlainLineOnce) {
  const LogRecords records;
  parse(u"x");
  parse(u"");
  EXPECT_THAT(records.get(), ElementsAre("In LineNodeParserService", "In LineNodeParserService"));
}

TEST_F(LineNodeParserService, ParsesTheSameWithAndWithoutRecords) {
  const ustring line = u"ab # <@output#o [0,1]> # <@text:anchor#a [0,99]>";
  const Texts quiet = textsOf(line);
  const LogRecords records;
  EXPECT_EQ(textsOf(line), quiet);
}

}  // namespace
