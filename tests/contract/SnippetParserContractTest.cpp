#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

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

/// Overrides the two operations that have no body in the interface, and counts its instances.
class CountingParser : public SnippetParser {
 public:
  explicit CountingParser(int& alive) : alive(alive) { ++this->alive; }
  CountingParser(const CountingParser&) = delete;
  CountingParser& operator=(const CountingParser&) = delete;
  ~CountingParser() override { --alive; }

  bool canParse(const Snippet& snippet) override { return snippet.type.kind == 3; }

  ParseResult parse(std::shared_ptr<TesseraDocument> document, const Snippet& snippet) override {
    ++calls;
    ParseResult result;
    result.type = snippet.type;
    result.markerTypes.insert(snippet.text);
    result.flag = document != nullptr;
    return result;
  }

  int calls = 0;

 private:
  int& alive;
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

TEST(SnippetParserContract, TheMarkerTypesAreSortedWithoutDuplicates) {
  ParseResult result;
  for (const char16_t* const text : {u"task", u"\uFFFF", u"output", u"\U0001F600", u"task"}) {
    result.markerTypes.insert(text);
  }
  const std::vector<ustring> inOrder(result.markerTypes.begin(), result.markerTypes.end());
  EXPECT_EQ(inOrder, (std::vector<ustring>{u"output", u"task", u"\U0001F600", u"\uFFFF"}));
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

TEST(SnippetParserContract, TheOperationsAreCalledThroughTheInterface) {
  int alive = 0;
  {
    const std::unique_ptr<SnippetParser> parser = std::make_unique<CountingParser>(alive);
    EXPECT_EQ(alive, 1);
    const Snippet snippet{u"x", {2, 3}, u""};
    EXPECT_TRUE(parser->canParse(snippet));
    EXPECT_FALSE(parser->canParse(Snippet{u"x", {2, 0}, u""}));
    const ParseResult result = parser->parse(std::make_shared<TesseraDocument>(), snippet);
    EXPECT_TRUE(result.type == snippet.type);
    EXPECT_EQ(result.markerTypes, std::set<ustring>{u"x"});
    EXPECT_TRUE(result.flag);
  }
  EXPECT_EQ(alive, 0);
}

TEST(SnippetParserContract, ResetDoesNothingUnlessOverridden) {
  int alive = 0;
  CountingParser parser(alive);
  const Snippet snippet{u"x", {0, 3}, u""};
  parser.parse(nullptr, snippet);
  static_cast<SnippetParser&>(parser).reset();
  EXPECT_EQ(parser.calls, 1);
  EXPECT_TRUE(parser.canParse(snippet));
}

}  // namespace
