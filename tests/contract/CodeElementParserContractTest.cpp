#include <cstdint>
#include <optional>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "document/kdzero/Node.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/build/markup/code/CodeElement.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace {

using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using kd::zero::Model;
using quenlith::build::markup::code::CodeElement;
using quenlith::build::markup::code::CodeElementParser;
using quenlith::build::markup::code::PlainTextNodeParserImpl;
using quenlith::syntax::Marker;
using Range = std::pair<std::uint64_t, std::uint64_t>;

static_assert(std::is_same_v<decltype(CodeElement::text), ustring>);
static_assert(std::is_same_v<decltype(CodeElement::marker), std::optional<Marker>>);
static_assert(std::is_same_v<decltype(CodeElement::range), std::optional<Range>>);
static_assert(std::is_abstract_v<CodeElementParser>);
static_assert(std::has_virtual_destructor_v<CodeElementParser>);
static_assert(std::is_same_v<decltype(&CodeElementParser::canParse),
                             bool (CodeElementParser::*)(const Marker&)>);
static_assert(std::is_same_v<decltype(&CodeElementParser::parse),
                             Node (CodeElementParser::*)(const Model&, const CodeElement&)>);
static_assert(std::is_base_of_v<CodeElementParser, PlainTextNodeParserImpl>);
static_assert(std::is_default_constructible_v<PlainTextNodeParserImpl>);
static_assert(sizeof(PlainTextNodeParserImpl) == sizeof(void*));

ustring textOf(const Node& node) {
  const PlainTextNode text = PlainTextNode::castFrom(node);
  return text ? ustring(text->getText()) : ustring(u"not a plain text node");
}

TEST(CodeElementParserContract, ThePlainTextParserTakesEveryMarker) {
  PlainTextNodeParserImpl parser;
  for (const char16_t* const text : {u"control", u"output", u"task", u"text", u"",
                                     u"# <@text:anchor#a>", u"# <@unknown:type>"}) {
    EXPECT_TRUE(parser.canParse(Marker(text)));
  }
}

TEST(CodeElementParserContract, ThePlainTextParserMakesANodeOfTheText) {
  PlainTextNodeParserImpl implementation;
  CodeElementParser& parser = implementation;
  TesseraDocument document;
  const Model model = document.getModel();
  const Node node = parser.parse(model, CodeElement{u"x = 1", std::nullopt, std::nullopt});
  EXPECT_EQ(textOf(node), u"x = 1");
  EXPECT_EQ(document.getNumberOfChildren(), 0U);
}

TEST(CodeElementParserContract, ThePlainTextParserTakesEmptyText) {
  PlainTextNodeParserImpl parser;
  TesseraDocument document;
  CodeElement element;
  EXPECT_EQ(textOf(parser.parse(document.getModel(), element)), u"");
}

TEST(CodeElementParserContract, ThePlainTextParserIgnoresMarkerAndRange) {
  PlainTextNodeParserImpl parser;
  TesseraDocument document;
  const CodeElement element{u"abc", Marker(u"# <@output#o1>"), Range(2, 5)};
  const Node node = parser.parse(document.getModel(), element);
  EXPECT_EQ(textOf(node), u"abc");
  EXPECT_EQ(node->getAnchorId(), u"");
  EXPECT_EQ(node->getChildren().size(), 0U);
}

TEST(CodeElementParserContract, EveryCallMakesANewNode) {
  PlainTextNodeParserImpl parser;
  TesseraDocument document;
  const CodeElement element{u"same", std::nullopt, std::nullopt};
  const Node first = parser.parse(document.getModel(), element);
  const Node second = parser.parse(document.getModel(), element);
  EXPECT_NE(first.get(), second.get());
  document.addChild(first);
  document.addChild(second);
  EXPECT_EQ(document.getNumberOfChildren(), 2U);
}

}  // namespace
