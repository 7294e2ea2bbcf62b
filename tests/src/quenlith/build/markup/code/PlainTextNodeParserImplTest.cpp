#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "document/kdzero/PlainTextNode.hpp"

namespace {

using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using quenlith::build::markup::code::CodeElement;
using quenlith::build::markup::code::CodeElementParser;
using quenlith::build::markup::code::PlainTextNodeParserImpl;
using quenlith::syntax::Marker;

class PlainTextNodeParser : public testing::Test {
 protected:
  kd::zero::Model model = kd::zero::Model::create();
  std::unique_ptr<CodeElementParser> parser = std::make_unique<PlainTextNodeParserImpl>();
};

TEST_F(PlainTextNodeParser, TakesEveryMarker) {
  for (const char16_t* text : {u"task", u"output", u"control", u"%<@text:anchor#a>", u"", u"?"}) {
    EXPECT_TRUE(parser->canParse(Marker(std::u16string(text))));
  }
}

TEST_F(PlainTextNodeParser, CreatesAPlainTextNodeWithTheText) {
  const Node node = parser->parse(model, {u"x = \u00FC", std::nullopt, std::nullopt});
  ASSERT_TRUE(PlainTextNode::castFrom(node));
  EXPECT_EQ(PlainTextNode::castFrom(node)->getText(), u"x = \u00FC");
  EXPECT_EQ(node->getModel(), model);
  EXPECT_FALSE(node->getContainer());
  EXPECT_TRUE(node->getUuid().is_nil());
}

TEST_F(PlainTextNodeParser, CreatesANodeForTheEmptyText) {
  const Node node = parser->parse(model, {});
  ASSERT_TRUE(PlainTextNode::castFrom(node));
  EXPECT_EQ(PlainTextNode::castFrom(node)->getText(), u"");
}

TEST_F(PlainTextNodeParser, IgnoresMarkerAndRange) {
  const CodeElement element{u"text", Marker(u"%<@text:anchor#a>"), std::pair(1, 2)};
  const Node node = parser->parse(model, element);
  EXPECT_EQ(PlainTextNode::castFrom(node)->getText(), u"text");
  EXPECT_EQ(node->getAnchorId(), u"");
  EXPECT_TRUE(node->getChildren().empty());
}

TEST_F(PlainTextNodeParser, CreatesANewNodeEachTime) {
  EXPECT_NE(parser->parse(model, {}), parser->parse(model, {}));
}

}  // namespace
