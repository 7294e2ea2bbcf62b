#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "document/kdzero/TesseraDocument.hpp"
#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/Snippet.hpp"
#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/SnippetType.hpp"

namespace {

using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetParser;
using quenlith::build::markup::SnippetType;

static_assert(sizeof(SnippetType) == 2);
static_assert(std::is_same_v<decltype(SnippetType::group), std::uint8_t>);
static_assert(std::is_same_v<decltype(SnippetType::kind), std::uint8_t>);
static_assert(std::is_same_v<decltype(Snippet::text), ustring>);
static_assert(std::is_same_v<decltype(Snippet::type), SnippetType>);
static_assert(std::is_same_v<decltype(Snippet::auxiliaryText), ustring>);
static_assert(std::is_same_v<decltype(ParseResult::type), SnippetType>);
static_assert(std::is_same_v<decltype(ParseResult::markerTypes), std::set<ustring>>);
static_assert(std::is_same_v<decltype(ParseResult::flag), bool>);
static_assert(std::is_abstract_v<SnippetParser>);
static_assert(std::has_virtual_destructor_v<SnippetParser>);
static_assert(
    std::is_same_v<decltype(&SnippetParser::canParse), bool (SnippetParser::*)(const Snippet&)>);
static_assert(std::is_same_v<decltype(&SnippetParser::parse),
                             ParseResult (SnippetParser::*)(std::shared_ptr<TesseraDocument>,
                                                            const Snippet&)>);
static_assert(std::is_same_v<decltype(&SnippetParser::reset), void (SnippetParser::*)()>);

/// Overrides only the two operations that have no body in the interface.
class MinimalParser : public SnippetParser {
 public:
  bool canParse(const Snippet& /*snippet*/) override { return true; }
  ParseResult parse(std::shared_ptr<TesseraDocument> /*document*/,
                    const Snippet& /*snippet*/) override {
    return {};
  }
};

TEST(SnippetParserContract, TheRecordsHaveTheirFieldsInOrder) {
  const SnippetType type{1, 3};
  EXPECT_EQ(type.group, 1);
  EXPECT_EQ(type.kind, 3);
  const Snippet snippet{u"line", type, u"whole block"};
  EXPECT_EQ(snippet.text, u"line");
  EXPECT_EQ(snippet.type.kind, 3);
  EXPECT_EQ(snippet.auxiliaryText, u"whole block");
}

TEST(SnippetParserContract, TheTextsOfASnippetAreAcceptedInEveryForm) {
  const ustring constant = u"constant";
  ustring changing = u"changing";
  const Snippet fromVariables{constant, SnippetType{0, 0}, changing};
  EXPECT_EQ(fromVariables.text, u"constant");
  EXPECT_EQ(fromVariables.auxiliaryText, u"changing");
  const Snippet fromTemporaries{ustring(u"a"), {0, 0}, ustring(u"b")};
  EXPECT_EQ(fromTemporaries.text, u"a");
  EXPECT_EQ(fromTemporaries.auxiliaryText, u"b");
}

TEST(SnippetParserContract, TheTypeIsComparedAndCopiedAsOneUnit) {
  const SnippetType open{0, 3};
  SnippetType copy{1, 1};
  copy = open;
  EXPECT_TRUE(copy == open);
  EXPECT_FALSE((SnippetType{1, 3}) == open);
  EXPECT_FALSE((SnippetType{0, 0}) == open);
}

TEST(SnippetParserContract, AFreshResultIsPlainCode) {
  const ParseResult result;
  EXPECT_EQ(result.type.kind, 0);
  EXPECT_TRUE(result.markerTypes.empty());
  EXPECT_FALSE(result.flag);
}

TEST(SnippetParserContract, AResultIsCopiedAndMoved) {
  ParseResult result;
  result.type = SnippetType{0, 3};
  result.markerTypes = {u"a"};
  result.flag = true;
  const ParseResult copy(result);
  const ParseResult moved(std::move(result));
  for (const ParseResult& same : {copy, moved}) {
    EXPECT_EQ(same.type.kind, 3);
    EXPECT_EQ(same.markerTypes.size(), 1U);
    EXPECT_TRUE(same.flag);
  }
}

TEST(SnippetParserContract, ResetDoesNothingUnlessOverridden) {
  MinimalParser parser;
  EXPECT_NO_THROW(static_cast<SnippetParser&>(parser).reset());
}

}  // namespace
