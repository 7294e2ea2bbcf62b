#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "platform/model/Box.hpp"
#include "support/nilUuid.hpp"

namespace {

using document::kdzero::LineNode;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::LiveAppLineNode;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using document::kdzero::TextNode;
using kd::zero::Model;
using kd::zero::ModelElement;
using quenlith::test::Box;
using quenlith::test::kNil;
using quenlith::test::liveBoxes;
using quenlith::test::makeBox;

class Handle : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(liveBoxes(), 0); }

  Model model = Model::create();
};

TEST_F(Handle, IsOnePointerWide) {
  EXPECT_EQ(sizeof(Node), sizeof(void*));
  EXPECT_EQ(sizeof(LineNode), sizeof(void*));
  EXPECT_EQ(sizeof(Model), sizeof(void*));
}

TEST_F(Handle, IsEmptyAtFirst) {
  const Node node;
  EXPECT_FALSE(node);
  EXPECT_EQ(node.get(), nullptr);
  EXPECT_EQ(node, Node());
}

TEST_F(Handle, EndsTheElementWithTheLastReference) {
  {
    const Box box = makeBox(model);
    EXPECT_EQ(liveBoxes(), 1);
  }
  EXPECT_EQ(liveBoxes(), 0);
}

TEST_F(Handle, ACopyTakesAReferenceOfItsOwn) {
  Box copy;
  {
    const Box box = makeBox(model);
    copy = box;
    EXPECT_EQ(copy, box);
    EXPECT_TRUE(box);
  }
  EXPECT_EQ(liveBoxes(), 1);
  const Box another(copy);
  copy = Box();
  EXPECT_FALSE(copy);
  EXPECT_EQ(liveBoxes(), 1);
}

TEST_F(Handle, AMoveLeavesTheSourceEmpty) {
  Box box = makeBox(model);
  const Box::Impl* element = box.get();
  Box moved(std::move(box));
  // NOLINTNEXTLINE(bugprone-use-after-move): what a move leaves is looked at
  EXPECT_FALSE(box);
  EXPECT_EQ(moved.get(), element);
  box = std::move(moved);
  // NOLINTNEXTLINE(bugprone-use-after-move): what a move leaves is looked at
  EXPECT_FALSE(moved);
  EXPECT_EQ(box.get(), element);
  EXPECT_EQ(liveBoxes(), 1);
}

TEST_F(Handle, AssignmentDropsTheFormerReference) {
  Box box = makeBox(model);
  const Box other = makeBox(model);
  EXPECT_EQ(liveBoxes(), 2);
  box = other;
  EXPECT_EQ(liveBoxes(), 1);
}

TEST_F(Handle, SelfAssignmentChangesNothing) {
  Box box = makeBox(model);
  Box& same = box;
  box = same;
  ASSERT_TRUE(box);
  EXPECT_EQ(liveBoxes(), 1);
  box = std::move(same);
  ASSERT_TRUE(box);
  EXPECT_EQ(liveBoxes(), 1);
}

TEST_F(Handle, SelfSwapChangesNothing) {
  Box box = makeBox(model);
  const Box::Impl* element = box.get();
  Box& same = box;
  std::swap(box, same);
  EXPECT_EQ(box.get(), element);
  EXPECT_EQ(liveBoxes(), 1);
}

TEST_F(Handle, ASwapTradesTheElements) {
  Box first = makeBox(model);
  Box second;
  const Box::Impl* element = first.get();
  std::swap(first, second);
  EXPECT_FALSE(first);
  EXPECT_EQ(second.get(), element);
}

TEST_F(Handle, MayBeAssignedFromAChildOfItsOwnElement) {
  Box box = makeBox(model);
  box->parts.add(makeBox(model));
  const Box::Impl* child = box->parts[0].get();
  box = box->parts[0];
  EXPECT_EQ(box.get(), child);
  EXPECT_EQ(liveBoxes(), 1);
  EXPECT_FALSE(box->getContainer());
}

TEST_F(Handle, ADerivedLvalueConvertsByTakingAReference) {
  Node base;
  {
    LineNode line = LineNode::Builder(model).createLineNode(kNil);
    base = line;
    ASSERT_TRUE(line);
    EXPECT_EQ(static_cast<const ModelElement&>(base), line);
  }
  base->setAnchorId(u"still here");
  EXPECT_EQ(base->getAnchorId(), u"still here");
}

TEST_F(Handle, ADerivedTemporaryConvertsByGivingItsReferenceUp) {
  Box box = makeBox(model);
  const Box::Impl* element = box.get();
  ModelElement base(std::move(box));
  // NOLINTNEXTLINE(bugprone-use-after-move): what a move leaves is looked at
  EXPECT_FALSE(box);
  EXPECT_EQ(base.get(), element);
  EXPECT_EQ(liveBoxes(), 1);
  base = ModelElement();
  EXPECT_EQ(liveBoxes(), 0);
}

TEST_F(Handle, EveryKindOfNodeConvertsToNode) {
  const Node line = LineNode::Builder(model).createLineNode(kNil);
  const Node text = PlainTextNode::Builder(model).createPlainTextNode(kNil);
  const Node header = LiveAppLineNode::Builder(model).createLiveAppLineNode(kNil);
  const Node task =
      LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode(kNil);
  EXPECT_TRUE(LineNode::castFrom(line));
  EXPECT_TRUE(PlainTextNode::castFrom(text));
  EXPECT_TRUE(TextNode::castFrom(text));
  EXPECT_TRUE(LiveAppLineNode::castFrom(header));
  EXPECT_TRUE(LiveAppIntegratedInlineNode::castFrom(task));
  static_assert(!std::is_convertible_v<Node, LineNode>);
}

TEST_F(Handle, CastingToAKindThatTheElementIsNotGivesTheEmptyHandle) {
  const Node line = LineNode::Builder(model).createLineNode(kNil);
  EXPECT_FALSE(PlainTextNode::castFrom(line));
  EXPECT_FALSE(TextNode::castFrom(line));
  EXPECT_FALSE(LineNode::castFrom(Node()));
  EXPECT_FALSE(Node::castFrom(makeBox(model)));
}

TEST_F(Handle, CastingTakesAReference) {
  ModelElement element = makeBox(model);
  const Box cast = Box::castFrom(element);
  element = ModelElement();
  EXPECT_EQ(liveBoxes(), 1);
  EXPECT_TRUE(cast);
}

TEST_F(Handle, SharesAnElementByItsAddress) {
  Box box = makeBox(model);
  const Box shared = Box::share(box.get());
  box = Box();
  EXPECT_EQ(liveBoxes(), 1);
  EXPECT_FALSE(Box::share(nullptr));
}

TEST_F(Handle, ADetachedReferenceIsAdoptedAgain) {
  Box box = makeBox(model);
  ModelElement::Impl* element = box.detach();
  EXPECT_FALSE(box);
  EXPECT_EQ(liveBoxes(), 1);
  EXPECT_EQ(Box::adopt(element).get(), element);
}

TEST_F(Handle, ElementsTellTheirClassAndModel) {
  const Box box = makeBox(model);
  EXPECT_EQ(box->getMetaClass().getQualifiedName(), u"quenlith::test::Box");
  EXPECT_EQ(box->getModel(), model);
  EXPECT_FALSE(box->getContainer());
  EXPECT_FALSE(box->isProxy());
  EXPECT_TRUE(makeBox(model, quenlith::test::Loaded::kNo)->isProxy());
}

}  // namespace
