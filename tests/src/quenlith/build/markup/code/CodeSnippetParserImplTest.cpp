#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include "fakes/ParserFakes.hpp"
#include "support/LogCollector.hpp"

namespace {

using document::kdzero::TesseraDocument;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetType;
using quenlith::build::markup::code::CodeSnippetParserImpl;
using quenlith::syntax::Marker;
using quenlith::test::childTexts;
using quenlith::test::FakeElementParser;
using quenlith::test::FakeProvider;
using quenlith::test::LogRecords;
using testing::ElementsAre;
using testing::IsEmpty;

class CodeSnippetParser : public testing::Test {
 protected:
  CodeSnippetParser() { provider->elementParsers = {defaultParser}; }

  std::shared_ptr<FakeElementParser> defaultParser = std::make_shared<FakeElementParser>(u"D", u"");
  std::shared_ptr<FakeProvider> provider = std::make_shared<FakeProvider>();
  std::shared_ptr<TesseraDocument> document = std::make_shared<TesseraDocument>();
  CodeSnippetParserImpl parser{provider};
};

TEST_F(CodeSnippetParser, TakesEverySnippet) {
  EXPECT_TRUE(parser.canParse({}));
  EXPECT_TRUE(parser.canParse({u"x = 1", {0, 3}, u""}));
  EXPECT_TRUE(parser.canParse({u"# <@task#t>", {7, 255}, u"# <@task#t>"}));
}

TEST_F(CodeSnippetParser, AppendsTheLine) {
  parser.parse(document, {u"x = 1", {}, {}});
  parser.parse(document, {u"", {}, {}});
  ASSERT_EQ(document->getNumberOfChildren(), 2u);
  EXPECT_THAT(childTexts(document->getChildAt(0)), ElementsAre(u"D(x = 1)"));
  EXPECT_THAT(childTexts(document->getChildAt(1)), ElementsAre(u"D()"));
}

TEST_F(CodeSnippetParser, AlwaysReportsPlainCode) {
  for (const std::uint8_t kind : std::initializer_list<std::uint8_t>{0, 1, 3, 255}) {
    const ParseResult result =
        parser.parse(document, {u"# <@task#t>", {9, kind}, u"# <@task#t> # <@task#t>"});
    EXPECT_EQ(result.type, (SnippetType{0, 0}));
    EXPECT_FALSE(result.flag);
  }
}

TEST_F(CodeSnippetParser, ReportsTheMarkerKindsOfTheLine) {
  EXPECT_THAT(parser.parse(document, {u"x", {}, {}}).markerTypes, IsEmpty());
  EXPECT_THAT(parser.parse(document, {u"x # <@output#o>", {}, {}}).markerTypes,
              ElementsAre(Marker(u"output").toString()));
  EXPECT_THAT(parser.parse(document, {u"x", {}, {}}).markerTypes, IsEmpty());
}

TEST_F(CodeSnippetParser, MakesNoTaskHeader) {
  parser.parse(document, {u"# <@task#t>", {}, u"# <@task#t> # <@task#t>"});
  EXPECT_EQ(document->getNumberOfChildren(), 1u);
  EXPECT_THAT(document->getChildAt(0)->getParserFailures(), IsEmpty());
}

TEST_F(CodeSnippetParser, ReleasesTheDocument) {
  parser.parse(document, {u"x", {}, {}});
  EXPECT_EQ(document.use_count(), 1);
  EXPECT_EQ(provider.use_count(), 2);
}

TEST_F(CodeSnippetParser, ReleasesTheProviderBeforeTheDocument) {
  long providerUsers = 0;
  std::shared_ptr<TesseraDocument> last(new TesseraDocument, [&](TesseraDocument* released) {
    providerUsers = provider.use_count();
    delete released;
  });
  parser.parse(std::move(last), {u"x", {}, {}});
  EXPECT_EQ(providerUsers, 2);
}

TEST_F(CodeSnippetParser, KeepsWhatWasAddedBeforeAnException) {
  parser.parse(document, {u"x", {}, {}});
  defaultParser->failsToParse = true;
  EXPECT_THROW(parser.parse(document, {u"y", {}, {}}), quenlith::test::ServiceFailure);
  EXPECT_EQ(document->getNumberOfChildren(), 1u);
  EXPECT_EQ(document.use_count(), 1);
  EXPECT_EQ(provider.use_count(), 2);
}

TEST_F(CodeSnippetParser, KeepsTheProviderWhileItLives) {
  {
    const CodeSnippetParserImpl another(provider);
    EXPECT_EQ(provider.use_count(), 3);
  }
  EXPECT_EQ(provider.use_count(), 2);
}

TEST_F(CodeSnippetParser, IsNotChangedByReset) {
  parser.reset();
  parser.parse(document, {u"x", {}, {}});
  parser.reset();
  parser.parse(document, {u"y", {}, {}});
  EXPECT_EQ(document->getNumberOfChildren(), 2u);
}

TEST_F(CodeSnippetParser, LogsEachCall) {
  LogRecords records;
  parser.canParse({});
  EXPECT_THAT(records.get(), ElementsAre("Checking the default parser"));
  records.clear();
  parser.parse(document, {u"x", {}, {}});
  EXPECT_THAT(records.get(),
              ElementsAre("Parsing using the default parser", "In LineNodeParserService"));
}

}  // namespace
