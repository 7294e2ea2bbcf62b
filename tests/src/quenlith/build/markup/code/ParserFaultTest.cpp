#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "fakes/ParserFakes.hpp"
#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"
#include "quenlith/build/markup/code/task/TaskIdCounts.hpp"
#include "support/FailingAllocations.hpp"

namespace {

using document::kdzero::LineNode;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::code::CodeSnippetParserImpl;
using quenlith::build::markup::code::LineNodeParserService;
using quenlith::build::markup::code::PlainTextNodeParserImpl;
using quenlith::build::markup::code::TaskSnippetParserImpl;
using quenlith::build::markup::code::task::TaskIdCounts;
using quenlith::syntax::Marker;
using quenlith::test::childTexts;
using quenlith::test::failEachAllocation;
using quenlith::test::FakeAppendix;
using quenlith::test::FakeContributor;
using quenlith::test::FakeElementParser;
using quenlith::test::FakeProvider;
using quenlith::test::liveAllocations;

/// Tests with a line that contains escaped leaders, usable and unusable ranges, nested ranges, an
/// anchor, an unhandled marker, and markers that get contributor data.
class ParserFault : public testing::Test {
 protected:
  ParserFault() {
    provider->elementParsers = {std::make_shared<FakeElementParser>(u"O", u"output"),
                                std::make_shared<PlainTextNodeParserImpl>()};
    provider->contributors = {
        std::make_shared<FakeContributor>(u"a feature of a long name", u"text"),
        std::make_shared<FakeContributor>(u"another such feature", u"output")};
    appendix->addEntry(
        Marker(u"%<@task#a-task-of-a-long-name {\"uniqueId\":\"an identifier of some length\","
               u"\"text\":\"a text that no string stores inline\",\"other\":[1,{\"a\":2.5}]}>"));
  }

  const ustring kLine =
      u"0123456789 %%\\ abcdefghijklmnop # <@output#outer-of-some-length [1,9] {\"a\":[1,\"x\"]}> "
      u"# <@output#inner [3,5]> # <@output#\"wrong place\" [900,2]> # <@control:slider#c [0,1]> "
      u"# <@text:anchor#an-anchor-with-a-long-name [0,99]> end";

  std::shared_ptr<FakeProvider> provider = std::make_shared<FakeProvider>();
  std::shared_ptr<FakeAppendix> appendix = std::make_shared<FakeAppendix>();
  std::shared_ptr<TesseraDocument> document = std::make_shared<TesseraDocument>();
};

TEST_F(ParserFault, ALineIsParsedCompletelyOrNotAtAll) {
  LineNodeParserService service(provider);
  const Snippet snippet{kLine, {}, {}};
  const ParseResult expected = service.parseLine(document, snippet, {});
  const Node first = document->getChildAt(0);
  ASSERT_EQ(first->getChildren().size(), 5u);
  ASSERT_EQ(first->getParserFailures().size(), 2u);
  ASSERT_EQ(first->getContributorData().size(), 4u);

  ParseResult result;
  const std::size_t failed =
      failEachAllocation([&] { result = service.parseLine(document, snippet, {}); },
                         [&] {
                           ASSERT_EQ(document->getNumberOfChildren(), 1u);
                           ASSERT_EQ(document.use_count(), 1);
                           ASSERT_EQ(provider.use_count(), 2);
                         });
  EXPECT_GT(failed, 50u);
  ASSERT_EQ(document->getNumberOfChildren(), 2u);
  EXPECT_EQ(result.markerTypes, expected.markerTypes);
  const Node second = document->getChildAt(1);
  EXPECT_EQ(childTexts(second), childTexts(first));
  EXPECT_EQ(second->getAnchorId(), first->getAnchorId());
  ASSERT_EQ(second->getParserFailures().size(), 2u);
  EXPECT_EQ(second->getParserFailures()[1], first->getParserFailures()[1]);
  EXPECT_EQ(second->getContributorData().size(), 4u);
}

TEST_F(ParserFault, LinesThatFailLeakNothing) {
  const Snippet snippet{kLine, {}, {}};
  LineNodeParserService(provider).parseLine(document, snippet, {});
  // The fakes record their calls, so their memory is reserved in advance.
  const auto parser = std::make_shared<FakeElementParser>(u"O", u"output");
  provider->contributors.clear();
  provider->elementParsers.front() = parser;
  const auto parseIntoADocument = [&] {
    parser->asked.clear();
    parser->parsed.clear();
    const auto another = std::make_shared<TesseraDocument>();
    LineNodeParserService(provider).parseLine(another, snippet, {});
  };
  provider->calls.reserve(10000);
  parser->asked.reserve(10000);
  parser->parsed.reserve(10000);
  parseIntoADocument();
  parser->asked.clear();
  parser->parsed.clear();
  const std::ptrdiff_t before = liveAllocations();
  const std::size_t failed = failEachAllocation(parseIntoADocument, [&] {
    parser->asked.clear();
    parser->parsed.clear();
    ASSERT_EQ(liveAllocations(), before);
  });
  EXPECT_GT(failed, 50u);
}

TEST_F(ParserFault, APlainLineIsParsedOrNot) {
  CodeSnippetParserImpl parser(provider);
  const Snippet snippet{u"a line of plain code that is rather long", {}, {}};
  std::size_t failed = 0;
  for (std::uint64_t lines = 0; lines < 2000; ++lines) {
    failed += failEachAllocation([&] { parser.parse(document, snippet); },
                                 [&] { ASSERT_EQ(document->getNumberOfChildren(), lines); });
    ASSERT_EQ(document->getNumberOfChildren(), lines + 1);
  }
  EXPECT_GT(failed, 2000u);
}

/// Parses an opening line, one inside, one that overlaps and the closing one; returns the kinds.
std::vector<int> parseTask(TaskSnippetParserImpl& parser,
                           const std::shared_ptr<TesseraDocument>& document) {
  const ustring opening = u"x # <@task#a-task-of-a-long-name> # <@text:anchor#a-long-anchor-name>";
  const ustring overlapping = u"# <@task#another-task-of-a-long-name>";
  const ustring unpaired = u"# <@task#an-unpaired-task-of-a-long-name>";
  const ustring block = opening + u"\n" + opening + u"\n";
  std::vector<int> kinds;
  kinds.reserve(5);
  Snippet snippet{unpaired, {}, block};
  for (const ustring* line : {&unpaired, &opening, &unpaired, &overlapping, &opening}) {
    snippet.text = *line;
    snippet.type = parser.parse(document, snippet).type;
    kinds.push_back(snippet.type.kind);
  }
  return kinds;
}

TEST_F(ParserFault, ATaskIsParsedAgainAfterAReset) {
  TaskSnippetParserImpl parser(appendix, provider);
  const std::vector<int> expected{0, 3, 3, 3, 0};
  ASSERT_EQ(parseTask(parser, document), expected);
  const Node header = document->getChildAt(1);

  parser.reset();
  document = std::make_shared<TesseraDocument>();
  std::vector<int> kinds;
  const std::size_t failed = failEachAllocation([&] { kinds = parseTask(parser, document); },
                                                [&] {
                                                  ASSERT_EQ(document.use_count(), 1);
                                                  ASSERT_EQ(provider.use_count(), 2);
                                                  ASSERT_LE(document->getNumberOfChildren(), 6u);
                                                  parser.reset();
                                                  document = std::make_shared<TesseraDocument>();
                                                });
  EXPECT_GT(failed, 100u);
  EXPECT_EQ(kinds, expected);
  ASSERT_EQ(document->getNumberOfChildren(), 6u);
  const auto dataOf = [](const Node& node) {
    return LiveAppIntegratedInlineNode::castFrom(node->getChildren()[0])->getLiveTaskData();
  };
  EXPECT_EQ(dataOf(document->getChildAt(1)), dataOf(header));
  EXPECT_EQ(document->getChildAt(1)->getAnchorId(), u"a-long-anchor-name");
  EXPECT_EQ(document->getChildAt(4)->getParserFailures().size(), 1u);
}

TEST_F(ParserFault, AHeaderIsInTheDocumentBeforeItGetsItsAnchor) {
  TaskSnippetParserImpl parser(appendix, provider);
  const ustring opening = u"# <@task#t> # <@text:anchor#an-anchor-with-a-long-name>";
  const Snippet snippet{opening, {}, opening + u"\n# <@task#t>"};
  bool hadNoAnchor = false;
  failEachAllocation([&] { parser.parse(document, snippet); },
                     [&] {
                       if (document->getNumberOfChildren() == 1 &&
                           document->getChildAt(0)->getAnchorId().empty()) {
                         hadNoAnchor = true;
                       }
                       parser.reset();
                       document = std::make_shared<TesseraDocument>();
                     });
  EXPECT_TRUE(hadNoAnchor);
  EXPECT_EQ(document->getChildAt(0)->getAnchorId(), u"an-anchor-with-a-long-name");
}

TEST_F(ParserFault, AResetReleasesTheBlockSeen) {
  TaskSnippetParserImpl parser(appendix, provider);
  provider->calls.reserve(100);
  provider->contributors.clear();
  provider->elementParsers.erase(provider->elementParsers.begin());
  const auto parseOneLine = [&] {
    const auto another = std::make_shared<TesseraDocument>();
    parser.parse(another, {u"# <@task#t>", {}, ustring(100, u'b')});
  };
  // What the libraries keep after the first use stays.
  parseOneLine();
  parser.reset();
  const std::ptrdiff_t before = liveAllocations();
  parseOneLine();
  EXPECT_GT(liveAllocations(), before);
  parser.reset();
  EXPECT_EQ(liveAllocations(), before);
}

TEST_F(ParserFault, TasksThatFailLeakNothing) {
  const auto parseOne = [this] {
    provider->calls.clear();
    const auto another = std::make_shared<TesseraDocument>();
    TaskSnippetParserImpl parser(appendix, provider);
    parseTask(parser, another);
  };
  provider->calls.reserve(100);
  provider->contributors.clear();
  provider->elementParsers.erase(provider->elementParsers.begin());
  parseOne();
  provider->calls.clear();
  const std::ptrdiff_t before = liveAllocations();
  const std::size_t failed = failEachAllocation(parseOne, [&] {
    provider->calls.clear();
    ASSERT_EQ(liveAllocations(), before);
  });
  EXPECT_GT(failed, 100u);
}

TEST_F(ParserFault, ABlockIsCountedCompletelyOrNotAtAll) {
  const ustring block =
      u"# <@task#a-task-of-a-long-name> # <@task#a-task-of-a-long-name> # <@task#t> # <@task#t>";
  TaskIdCounts counts;
  std::size_t counted = 0;
  const std::size_t failed =
      failEachAllocation([&] { counted = counts.count(block, 0, u"t"); }, [] {});
  EXPECT_GT(failed, 5u);
  EXPECT_EQ(counted, 2u);
}

}  // namespace
