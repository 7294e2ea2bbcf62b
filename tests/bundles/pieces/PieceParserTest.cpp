#include "tessera/pieces/PieceParser.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "kd/zero/Model.hpp"
#include "support/FailingAllocations.hpp"
#include "tessera/pieces/ControlNode.hpp"
#include "tessera/pieces/OutputNode.hpp"

namespace {

using foundation::json::Value;
using quenlith::build::markup::code::CodeElement;
using quenlith::syntax::Marker;
using quenlith::test::failEachAllocation;
using quenlith::test::liveAllocations;
using tessera::pieces::ControlNode;
using tessera::pieces::OutputNode;
using tessera::pieces::PieceNode;
using tessera::pieces::PieceParser;

class PieceParserTest : public testing::Test {
 protected:
  PieceNode parse(const std::u16string& marker, const std::u16string& text = u"") {
    return PieceNode::castFrom(parser.parse(
        model, CodeElement{.text = text, .marker = Marker(marker), .range = std::pair(2U, 7U)}));
  }

  kd::zero::Model model = kd::zero::Model::create();
  PieceParser parser;
};

TEST_F(PieceParserTest, AcceptsOutputAndControlMarkersOfAnyType) {
  for (const char16_t* marker : {u"output", u"control", u"# <@output:table#o>",
                                 u"// <@control:slider#c {\"min\":0}>", u"# <@output:anchor>"}) {
    EXPECT_TRUE(parser.canParse(Marker(marker)));
  }
}

TEST_F(PieceParserTest, AcceptsNoOtherMarker) {
  for (const char16_t* marker : {u"task", u"text", u"# <@text:anchor#output>", u"# <@outputs#o>",
                                 u"# <@Output#o>", u"# <@text:control#o>", u""}) {
    EXPECT_FALSE(parser.canParse(Marker(marker)));
  }
}

TEST_F(PieceParserTest, TheElementOfTheMarkerDecidesTheKind) {
  EXPECT_TRUE(OutputNode::castFrom(parse(u"# <@output#o>")));
  EXPECT_TRUE(ControlNode::castFrom(parse(u"# <@control#output>")));
}

TEST_F(PieceParserTest, ANodeHasTheTextOfThePieceAndThePartsOfTheMarker) {
  const PieceNode node = parse(u"# <@control:slider#\"a b\" [9,9] {\"min\":0.5}>", u"te\xD800xt");
  EXPECT_EQ(node->getText(), u"te\xD800xt");
  EXPECT_EQ(node->getId(), u"a b");
  EXPECT_EQ(node->getType(), u"slider");
  // The range of the piece's record, whatever the text of the marker says.
  EXPECT_EQ(node->getRange(), PieceNode::Impl::Range(2, 7));
  EXPECT_EQ(node->getData(), (foundation::json::Object{{"min", Value(0.5)}}));
}

TEST_F(PieceParserTest, EachNodeIsNewAndDetached) {
  const PieceNode first = parse(u"output", u"x");
  const PieceNode second = parse(u"output", u"x");
  EXPECT_NE(first, second);
  EXPECT_FALSE(first->getContainer());
  EXPECT_TRUE(first->getUuid().is_nil());
}

TEST_F(PieceParserTest, APieceWithoutAMarkerIsRefused) {
  EXPECT_THROW(parser.parse(model, CodeElement{.text = u"x", .marker = {}, .range = {}}),
               std::bad_optional_access);
}

TEST_F(PieceParserTest, ANodeThatCannotBeMadeLeaksNothing) {
  const Marker marker(u"# <@control:slider#an-id-that-is-too-long-for-a-buffer {\"key\":[1,2]}>");
  const CodeElement element{
      .text = std::u16string(600, u'x'), .marker = marker, .range = std::pair(0U, 600U)};
  // Allocates what the model keeps.
  parser.parse(model, element);
  const std::ptrdiff_t before = liveAllocations();
  const std::size_t failures = failEachAllocation([&] { parser.parse(model, element); },
                                                  [&] { EXPECT_EQ(liveAllocations(), before); });
  EXPECT_GE(failures, 1U);
  EXPECT_EQ(liveAllocations(), before);
  EXPECT_TRUE(model.verify());
}

}  // namespace
