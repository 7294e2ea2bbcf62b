#include <gtest/gtest.h>

#include "conformance/ParserHost.hpp"
#include "quenlith/build/markup/SnippetParser.hpp"

namespace quenlith::conformance {
namespace {

using build::markup::SnippetParser;

class StatelessParser final : public SnippetParser {
 public:
  bool canParse(const Snippet&) override { return ++questions > 0; }
  ParseResult parse(std::shared_ptr<document::kdzero::TesseraDocument>, const Snippet&) override {
    return {};
  }

  int questions = 0;
};

TEST(ParseResultRules, AFreshResultHasKindZeroNoMarkerTypesAndFlagFalse) {
  const ParseResult result;
  EXPECT_EQ(result.type.kind, 0);
  EXPECT_TRUE(result.markerTypes.empty());
  EXPECT_FALSE(result.flag);
}

TEST(ParseResultRules, MarkerTypesKeepOneCopyAndAscendByCodeUnits) {
  ParseResult result;
  // U+FF5E is a unit above every surrogate; by code points it would sort before the pair.
  const ustring fullwidth = u"\uff5e";
  const ustring pair = u"\U0001F600";
  result.markerTypes.insert({u"b", u"a", fullwidth, pair, u"a", u"B"});
  const std::vector<ustring> expected = {u"B", u"a", u"b", pair, fullwidth};
  EXPECT_EQ(std::vector<ustring>(result.markerTypes.begin(), result.markerTypes.end()), expected);
}

TEST(SnippetParserRules, ResetOfAParserThatDoesNotOverrideItHasNoEffect) {
  StatelessParser parser;
  parser.canParse(snippetOf(u"x"));
  static_cast<SnippetParser&>(parser).reset();
  EXPECT_EQ(parser.questions, 1);
}

TEST(SnippetTypeRules, BothBytesAreComparedAsOne) {
  EXPECT_EQ((SnippetType{1, 3}), (SnippetType{1, 3}));
  EXPECT_FALSE((SnippetType{1, 3}) == (SnippetType{0, 3}));
  EXPECT_FALSE((SnippetType{1, 3}) == (SnippetType{1, 2}));
}

}  // namespace
}  // namespace quenlith::conformance
