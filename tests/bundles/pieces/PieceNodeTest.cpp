#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "tessera/pieces/ControlNode.hpp"
#include "tessera/pieces/OutputNode.hpp"

namespace {

using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using document::kdzero::TextNode;
using foundation::json::Value;
using quenlith::syntax::Marker;
using tessera::pieces::ControlNode;
using tessera::pieces::OutputNode;
using tessera::pieces::PieceNode;

template <class K>
class PieceNodeOfEachKind : public testing::Test {
 protected:
  static K make(const kd::zero::Model& model) {
    if constexpr (std::is_same_v<K, OutputNode>) {
      return OutputNode::Builder(model).createOutputNode({});
    } else {
      return ControlNode::Builder(model).createControlNode({});
    }
  }

  TesseraDocument document;
};

using Kinds = testing::Types<OutputNode, ControlNode>;
TYPED_TEST_SUITE(PieceNodeOfEachKind, Kinds, );

TYPED_TEST(PieceNodeOfEachKind, IsEmptyAtFirst) {
  const TypeParam node = this->make(this->document.getModel());
  EXPECT_EQ(node->getText(), u"");
  EXPECT_EQ(node->getId(), u"");
  EXPECT_EQ(node->getType(), u"");
  EXPECT_EQ(node->getRange(), PieceNode::Impl::Range(0, 0));
  EXPECT_TRUE(node->getData().empty());
}

TYPED_TEST(PieceNodeOfEachKind, KeepsWhatIsSet) {
  const TypeParam node = this->make(this->document.getModel());
  node->setText(std::u16string(1000, u'x'));
  node->setRange({3, 18446744073709551615U});
  const Marker marker(u"# <@control:slider#\"an id\" {\"a\":1.5}>");
  node->setMarker(marker);
  EXPECT_EQ(node->getText(), std::u16string(1000, u'x'));
  EXPECT_EQ(node->getId(), u"an id");
  EXPECT_EQ(node->getType(), u"slider");
  EXPECT_EQ(node->getRange(), PieceNode::Impl::Range(3, 18446744073709551615U));
  EXPECT_EQ(node->getData(), (foundation::json::Object{{"a", Value(1.5)}}));
  EXPECT_EQ(node->getMarker(), marker);
  this->document.addChild(node);
  EXPECT_TRUE(this->document.getModel().verify());
}

TYPED_TEST(PieceNodeOfEachKind, IsATextNodeAndAPieceNodeButNotPlainText) {
  const Node node = this->make(this->document.getModel());
  EXPECT_TRUE(TypeParam::castFrom(node));
  EXPECT_TRUE(PieceNode::castFrom(node));
  EXPECT_TRUE(TextNode::castFrom(node));
  EXPECT_FALSE(PlainTextNode::castFrom(node));
  EXPECT_NE(static_cast<bool>(OutputNode::castFrom(node)),
            static_cast<bool>(ControlNode::castFrom(node)));
}

TYPED_TEST(PieceNodeOfEachKind, CanContainNodesNestedVeryDeep) {
  const kd::zero::Model model = this->document.getModel();
  Node innermost = this->make(model);
  this->document.addChild(innermost);
  for (int i = 0; i < 100000; ++i) {
    const TypeParam child = this->make(model);
    child->setMarker(Marker(u"# <@output#\"an id\">"));
    innermost->getChildrenMutable().add(child);
    innermost = child;
  }
  EXPECT_TRUE(model.verify());
}

TEST(PieceNode, HasTheNameOfItsClass) {
  const TesseraDocument document;
  const Node output = OutputNode::Builder(document.getModel()).createOutputNode({});
  EXPECT_EQ(output->getMetaClass().getQualifiedName(), u"tessera::pieces::OutputNode");
  EXPECT_EQ(output->getMetaClass().getName(), u"OutputNode");
  const Node control = ControlNode::Builder(document.getModel()).createControlNode({});
  EXPECT_EQ(control->getMetaClass().getName(), u"ControlNode");
}

}  // namespace
