#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "contributors/kdzero/ContributorData.hpp"
#include "contributors/kdzero/LineData.hpp"
#include "contributors/kdzero/NodeContributorData.hpp"
#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/Node.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "document/kdzero/TextNode.hpp"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/ElementSequence.hpp"
#include "kd/zero/Model.hpp"
#include "support/nilUuid.hpp"
#include "tessera/contentmodel/kdzero/LiveTaskData.hpp"

namespace {

using contributors::kdzero::ContributorData;
using contributors::kdzero::LineData;
using contributors::kdzero::NodeContributorData;
using document::kdzero::LineNode;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::LiveAppLineNode;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using document::kdzero::TextNode;
using fl::i18n::ustring;
using kd::zero::ElementSequence;
using kd::zero::Model;
using quenlith::test::kNil;
using tessera::contentmodel::kdzero::LiveTaskData;

/// A document, its model, and one node of every kind, detached.
class DocumentModelContract : public testing::Test {
 protected:
  TesseraDocument document;
  const Model model = document.getModel();
  LineNode line = LineNode::Builder(model).createLineNode(kNil);
  PlainTextNode text = PlainTextNode::Builder(model).createPlainTextNode(kNil);
  LiveAppLineNode header = LiveAppLineNode::Builder(model).createLiveAppLineNode(kNil);
  LiveAppIntegratedInlineNode task =
      LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode(kNil);
  NodeContributorData contribution =
      NodeContributorData::Builder(model).createNodeContributorData(kNil);
};

// The create operation belongs to the base that each kind's implementation class provides.
template <typename Kind>
using BuilderBase = typename Kind::Impl::template BuilderBase<typename Kind::Builder>;

template <typename Kind>
constexpr bool builderHasBase() {
  return std::is_base_of_v<BuilderBase<Kind>, typename Kind::Builder> &&
         std::is_constructible_v<typename Kind::Builder, const Model&>;
}

static_assert(builderHasBase<LineNode>());
static_assert(builderHasBase<PlainTextNode>());
static_assert(builderHasBase<LiveAppLineNode>());
static_assert(builderHasBase<LiveAppIntegratedInlineNode>());
static_assert(builderHasBase<NodeContributorData>());

template <typename Handle>
constexpr bool isHandle() {
  return sizeof(Handle) == sizeof(void*) && std::is_default_constructible_v<Handle> &&
         std::is_copy_constructible_v<Handle> && std::is_copy_assignable_v<Handle> &&
         std::is_move_constructible_v<Handle> && std::is_move_assignable_v<Handle> &&
         std::is_constructible_v<bool, const Handle&> &&
         std::is_same_v<decltype(std::declval<const Handle&>().get()), typename Handle::Impl*> &&
         std::is_same_v<decltype(std::declval<const Handle&>().operator->()),
                        typename Handle::Impl*>;
}

static_assert(isHandle<Node>());
static_assert(isHandle<TextNode>());
static_assert(isHandle<PlainTextNode>());
static_assert(isHandle<LineNode>());
static_assert(isHandle<LiveAppLineNode>());
static_assert(isHandle<LiveAppIntegratedInlineNode>());
static_assert(isHandle<ContributorData>());
static_assert(isHandle<NodeContributorData>());
static_assert(isHandle<LineData>());
static_assert(isHandle<Model>());

static_assert(std::is_convertible_v<const LineNode&, Node>);
static_assert(std::is_convertible_v<const PlainTextNode&, Node>);
static_assert(std::is_convertible_v<const PlainTextNode&, TextNode>);
static_assert(std::is_convertible_v<const LiveAppLineNode&, Node>);
static_assert(std::is_convertible_v<const LiveAppIntegratedInlineNode&, Node>);
static_assert(std::is_convertible_v<const NodeContributorData&, ContributorData>);
static_assert(std::is_base_of_v<Node::Impl, LineNode::Impl>);
static_assert(std::is_base_of_v<TextNode::Impl, PlainTextNode::Impl>);

static_assert(std::is_same_v<decltype(std::declval<TesseraDocument&>().getModel()), Model>);
static_assert(std::is_same_v<decltype(std::declval<TesseraDocument&>().getNumberOfChildren()),
                             std::uint64_t>);
static_assert(
    std::is_same_v<decltype(std::declval<TesseraDocument&>().getChildAt(std::uint64_t{})), Node>);

TEST_F(DocumentModelContract, EveryBuilderMakesANewElement) {
  EXPECT_TRUE(line);
  EXPECT_TRUE(text);
  EXPECT_TRUE(header);
  EXPECT_TRUE(task);
  EXPECT_TRUE(contribution);
  EXPECT_TRUE(LineData::Builder(model).createLineData(kNil));
  EXPECT_EQ(document.getNumberOfChildren(), 0U);
}

TEST_F(DocumentModelContract, CreateIsAnOperationOfTheBuilderBase) {
  LineNode::Builder builder(model);
  BuilderBase<LineNode>& base = builder;
  const LineNode made = base.createLineNode(kNil);
  EXPECT_TRUE(made);
  EXPECT_NE(made.get(), line.get());
}

TEST_F(DocumentModelContract, NodesWithTheNilUuidAreDistinctAndCanBothBeAttached) {
  const LineNode other = LineNode::Builder(model).createLineNode(kNil);
  document.addChild(line);
  document.addChild(other);
  ASSERT_EQ(document.getNumberOfChildren(), 2U);
  EXPECT_EQ(document.getChildAt(0).get(), line.get());
  EXPECT_EQ(document.getChildAt(1).get(), other.get());
  EXPECT_NE(line.get(), other.get());
}

TEST_F(DocumentModelContract, TheLastChildIsTheNodeAddedLast) {
  document.addChild(header);
  document.addChild(line);
  const std::uint64_t last = document.getNumberOfChildren() - 1;
  EXPECT_EQ(document.getChildAt(last).get(), line.get());
}

TEST_F(DocumentModelContract, TheDocumentKeepsAReferenceToItsNodes) {
  const Node::Impl* const element = line.get();
  document.addChild(std::move(line));
  EXPECT_FALSE(line);
  EXPECT_EQ(document.getChildAt(0).get(), element);
  // A released node's memory is used for the next node.
  const LineNode next = LineNode::Builder(model).createLineNode(kNil);
  EXPECT_NE(next.get(), element);
  document.getChildAt(0)->setAnchorId(u"still usable");
  EXPECT_EQ(document.getChildAt(0)->getAnchorId(), u"still usable");
}

TEST_F(DocumentModelContract, AHandleIsEmptyWhenDefaultConstructedOrMovedFrom) {
  EXPECT_FALSE(Node());
  EXPECT_FALSE(LineData());
  LineNode moved = std::move(line);
  EXPECT_TRUE(moved);
  EXPECT_FALSE(line);
  LineNode assigned;
  assigned = std::move(moved);
  EXPECT_TRUE(assigned);
  // NOLINTNEXTLINE(bugprone-use-after-move): the state that a move leaves is what is tested
  EXPECT_FALSE(moved);
}

TEST_F(DocumentModelContract, CopiesOfAHandleReferToTheSameElement) {
  const LineNode copy = line;
  LineNode assigned;
  assigned = copy;
  EXPECT_EQ(copy.get(), line.get());
  EXPECT_EQ(assigned.get(), line.get());
  line = LineNode();
  // A released node's memory is used for the next node.
  const LineNode next = LineNode::Builder(model).createLineNode(kNil);
  EXPECT_NE(next.get(), copy.get());
  assigned->setAnchorId(u"alive");
  EXPECT_EQ(copy->getAnchorId(), u"alive");
}

TEST_F(DocumentModelContract, ADerivedHandleConvertsToItsBaseAsTheSameElement) {
  const Node shared = line;
  EXPECT_TRUE(line);
  EXPECT_EQ(shared.get(), line.get());
  const Node::Impl* const element = text.get();
  const Node taken = std::move(text);
  EXPECT_FALSE(text);
  EXPECT_EQ(taken.get(), element);
}

TEST_F(DocumentModelContract, NodeFieldsAreSetThroughTheImplementation) {
  const ustring constant = u"a";
  ustring changing = u"b";
  line->setAnchorId(constant);
  EXPECT_EQ(line->getAnchorId(), u"a");
  line->setAnchorId(changing);
  EXPECT_EQ(line->getAnchorId(), u"b");
  line->setAnchorId(ustring(u"c"));
  EXPECT_EQ(line->getAnchorId(), u"c");
  line.get()->setAnchorId(u"d");
  EXPECT_EQ(line->getAnchorId(), u"d");

  text->setText(constant);
  EXPECT_EQ(text->getText(), u"a");
  text->setText(changing);
  EXPECT_EQ(text->getText(), u"b");
  text->setText(ustring(u"c"));
  EXPECT_EQ(text->getText(), u"c");
  text->setText(u"");
  EXPECT_EQ(text->getText(), u"");

  task->setId(constant);
  EXPECT_EQ(task->getId(), u"a");
  task->setId(ustring(u"c"));
  EXPECT_EQ(task->getId(), u"c");
  task->setId(u"d");
  EXPECT_EQ(task->getId(), u"d");
}

TEST_F(DocumentModelContract, ContributorDataIsNamedAndContainsLineData) {
  const ustring feature = u"first";
  contribution->setContributingFeature(feature);
  EXPECT_EQ(contribution->getContributingFeature(), u"first");
  contribution->setContributingFeature(ustring(u"second"));
  EXPECT_EQ(contribution->getContributingFeature(), u"second");
  contribution->setContributingFeature(u"third");
  EXPECT_EQ(contribution->getContributingFeature(), u"third");

  const LineData data = LineData::Builder(model).createLineData(kNil);
  ElementSequence<LineData>& lines = contribution->getLineDataListMutable();
  lines.add(data);
  ASSERT_EQ(lines.size(), 1U);
  ElementSequence<NodeContributorData>& contributions = line->getContributorDataMutable();
  contributions.add(contribution);
  EXPECT_EQ(contributions.size(), 1U);
}

}  // namespace
