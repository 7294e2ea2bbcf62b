#include <gtest/gtest.h>

#include "conformance/ParserHost.hpp"
#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"

namespace quenlith::conformance {
namespace {

using Bytes = std::vector<std::uint8_t>;
using build::markup::code::CodeSnippetParserImpl;

TEST(DefaultParserRules, EverySnippetIsAccepted) {
  ParserHost host;
  CodeSnippetParserImpl parser(host.provider);
  EXPECT_TRUE(parser.canParse(snippetOf(u"")));
  EXPECT_TRUE(parser.canParse(snippetOf(u"x = 1", 3)));
  EXPECT_TRUE(parser.canParse(snippetOf(u"# <@task#a> # <@task#a>")));
  EXPECT_EQ(host.takeMessages(), (std::vector<std::string>(3, "Checking the default parser")));
}

TEST(DefaultParserRules, TypeIsZeroWhateverTheSnippetSays) {
  ParserHost host;
  CodeSnippetParserImpl parser(host.provider);
  for (const std::uint8_t byte : Bytes{0, 1, 3, 255}) {
    Snippet snippet = snippetOf(u"# <@task#a>", byte);
    snippet.type.group = byte;
    EXPECT_EQ(parser.parse(host.document, snippet).type, (SnippetType{0, 0}));
  }
}

TEST(DefaultParserRules, MarkerTypesAreThoseOfTheLine) {
  ParserHost host;
  CodeSnippetParserImpl parser(host.provider);
  EXPECT_TRUE(parser.parse(host.document, snippetOf(u"x = 1")).markerTypes.empty());
  const auto result = parser.parse(host.document, snippetOf(u"y # <@output#o {\"a\":1}>"));
  EXPECT_EQ(result.markerTypes, (std::set<ustring>{Marker(u"output").toString()}));
}

TEST(DefaultParserRules, FlagIsAlwaysFalse) {
  ParserHost host;
  CodeSnippetParserImpl parser(host.provider);
  for (const auto* text : {u"", u"x", u"# <@text:anchor#a>", u"# <@task#a>"}) {
    EXPECT_FALSE(parser.parse(host.document, snippetOf(text)).flag);
  }
}

TEST(DefaultParserRules, WithLoggingDisabledNoRecordIsMadeAndTheDocumentIsTheSame) {
  const ustring text = u"x = 1 # <@text:anchor#a [0,1]> # <@output [9,2]>";
  WorldPlan silentPlan;
  silentPlan.logging = false;
  ParserHost loud;
  ParserHost silent(silentPlan);
  CodeSnippetParserImpl(loud.provider).parse(loud.document, snippetOf(text));
  const auto before = silent.takeMessages();
  CodeSnippetParserImpl(silent.provider).parse(silent.document, snippetOf(text));
  EXPECT_TRUE(silent.takeMessages().empty());
  EXPECT_EQ(silent.nodes(), loud.nodes());
}

TEST(DefaultParserRules, AfterAParseOnlyTheCallerOwnsTheDocument) {
  ParserHost host;
  CodeSnippetParserImpl parser(host.provider);
  parser.parse(host.document, snippetOf(u"x # <@output>"));
  EXPECT_EQ(host.document.use_count(), 1);
  EXPECT_EQ(host.provider.use_count(), 2) << "the host's reference and the parser's";
  EXPECT_TRUE(host.provider->isSoleOwner());
}

TEST(DefaultParserRules, EveryReferenceIsReleasedWhenAServiceThrows) {
  WorldPlan plan;
  plan.throwOneIn = 1;
  ParserHost host(plan);
  CodeSnippetParserImpl parser(host.provider);
  EXPECT_THROW(parser.parse(host.document, snippetOf(u"x")), oracle::ServiceFailure);
  EXPECT_EQ(host.document.use_count(), 1);
  EXPECT_EQ(host.provider.use_count(), 2);
  EXPECT_TRUE(host.nodes().empty());
}

TEST(DefaultParserRules, ResetHasNoEffect) {
  ParserHost host;
  CodeSnippetParserImpl parser(host.provider);
  parser.parse(host.document, snippetOf(u"x"));
  host.takeTrace();
  parser.reset();
  EXPECT_TRUE(host.takeTrace().empty());
  parser.parse(host.document, snippetOf(u"x"));
  EXPECT_EQ(host.nodes().at(0), host.nodes().at(1));
}

TEST(DefaultParserRules, ParseLogsFirstThenTheLineIsParsed) {
  ParserHost host;
  CodeSnippetParserImpl(host.provider).parse(host.document, snippetOf(u""));
  EXPECT_EQ(host.takeTrace(), (std::vector<std::string>{
                                  "log Parsing using the default parser",
                                  "log In LineNodeParserService", "getLineContributorDataParsers",
                                  "getCodeElementParsers", "parse 0 \"\" no marker no range"}));
}

}  // namespace
}  // namespace quenlith::conformance
