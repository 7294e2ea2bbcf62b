#include "document/kdzero/Node.hpp"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "foundation/core/except/Exception.hpp"
#include "kd0/messages/ElementOfAnotherModel.hpp"
#include "kd0/messages/ElementWithinItself.hpp"
#include "support/nilUuid.hpp"

namespace {

using contributors::kdzero::LineData;
using contributors::kdzero::NodeContributorData;
using document::kdzero::LineNode;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::LiveAppLineNode;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using foundation::core::except::IMsgIDException;
using quenlith::test::kNil;

constexpr boost::uuids::uuid kSome{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};

class NodeOfADocument : public testing::Test {
 protected:
  LineNode makeLine() { return LineNode::Builder(model).createLineNode(kNil); }
  PlainTextNode makeText() { return PlainTextNode::Builder(model).createPlainTextNode(kNil); }
  NodeContributorData makeData() {
    return NodeContributorData::Builder(model).createNodeContributorData(kNil);
  }
  LineData makeLineData() { return LineData::Builder(model).createLineData(kNil); }

  TesseraDocument document;
  kd::zero::Model model = document.getModel();
};

// Builders.

TEST_F(NodeOfADocument, IsMadeDetached) {
  const LineNode line = makeLine();
  EXPECT_FALSE(line->getContainer());
  EXPECT_FALSE(line->getParent());
  EXPECT_EQ(line->getModel(), model);
  EXPECT_EQ(document.getNumberOfChildren(), 0u);
}

TEST_F(NodeOfADocument, MayHaveTheNilIdentifierLikeAnyOther) {
  const LineNode first = makeLine();
  const LineNode second = makeLine();
  EXPECT_NE(first, second);
  EXPECT_TRUE(first->getUuid().is_nil());
  document.addChild(first);
  document.addChild(second);
  EXPECT_EQ(document.getNumberOfChildren(), 2u);
}

TEST_F(NodeOfADocument, KeepsTheIdentifierThatItWasGiven) {
  EXPECT_EQ(LineNode::Builder(model).createLineNode(kSome)->getUuid(), kSome);
  EXPECT_EQ(PlainTextNode::Builder(model).createPlainTextNode(kSome)->getUuid(), kSome);
  EXPECT_EQ(LiveAppLineNode::Builder(model).createLiveAppLineNode(kSome)->getUuid(), kSome);
  EXPECT_EQ(LiveAppIntegratedInlineNode::Builder(model)
                .createLiveAppIntegratedInlineNode(kSome)
                ->getUuid(),
            kSome);
  EXPECT_EQ(NodeContributorData::Builder(model).createNodeContributorData(kSome)->getUuid(), kSome);
  EXPECT_EQ(LineData::Builder(model).createLineData(kSome)->getUuid(), kSome);
}

TEST_F(NodeOfADocument, WithAnIdentifierOfItsOwnIsNotMergedWithItsTwin) {
  document.addChild(LineNode::Builder(model).createLineNode(kSome));
  document.addChild(LineNode::Builder(model).createLineNode(kSome));
  EXPECT_EQ(document.getNumberOfChildren(), 2u);
}

TEST_F(NodeOfADocument, BuilderSharesTheModelForItsLife) {
  kd::zero::Model shortLived = kd::zero::Model::create();
  const LineNode::Builder builder(shortLived);
  shortLived = kd::zero::Model();
  EXPECT_TRUE(builder.createLineNode(kNil)->getModel());
}

// Children.

TEST_F(NodeOfADocument, HasItsChildrenInOrder) {
  const LineNode line = makeLine();
  std::vector<Node> nodes;
  for (int i = 0; i < 12; ++i) {
    nodes.emplace_back(makeText());
    line->getChildrenMutable().add(nodes.back());
  }
  EXPECT_EQ(std::vector<Node>(line->getChildren().begin(), line->getChildren().end()), nodes);
  EXPECT_EQ(nodes[0]->getParent(), line);
  EXPECT_EQ(nodes[0]->getContainer(), line);
}

TEST_F(NodeOfADocument, HasAChildOnce) {
  const LineNode line = makeLine();
  const PlainTextNode text = makeText();
  line->getChildrenMutable().add(text);
  line->getChildrenMutable().add(text);
  EXPECT_EQ(line->getChildren().size(), 1u);
  line->getChildrenMutable().add(Node());
  EXPECT_EQ(line->getChildren().size(), 1u);
}

TEST_F(NodeOfADocument, KnowsThatAParentIsSingle) {
  const auto& children = makeLine()->getChildren();
  (void)children;
  const LineNode line = makeLine();
  EXPECT_TRUE(line->getChildren().isUnique());
  EXPECT_TRUE(line->getChildren().isComposite());
  ASSERT_NE(line->getChildren().getOpposite(), nullptr);
  EXPECT_FALSE(line->getChildren().getOpposite()->isMany());
  EXPECT_EQ(line->getChildren().getOpposite()->getName(), u"parent");
  EXPECT_EQ(line->getChildren().getCollectionProperty().getName(), u"children");
}

TEST_F(NodeOfADocument, MovesToItsNewParent) {
  const LineNode first = makeLine();
  const LineNode second = makeLine();
  const PlainTextNode text = makeText();
  first->getChildrenMutable().add(text);
  second->getChildrenMutable().add(text);
  EXPECT_TRUE(first->getChildren().empty());
  EXPECT_EQ(text->getParent(), second);
  document.addChild(text);
  EXPECT_TRUE(second->getChildren().empty());
  EXPECT_FALSE(text->getParent());
  EXPECT_TRUE(text->getContainer());
  first->getChildrenMutable().add(text);
  EXPECT_EQ(document.getNumberOfChildren(), 0u);
  EXPECT_EQ(text->getParent(), first);
}

TEST_F(NodeOfADocument, CannotContainItself) {
  const LineNode line = makeLine();
  EXPECT_THROW(line->getChildrenMutable().add(line), IMsgIDException);
  const LineNode inner = makeLine();
  line->getChildrenMutable().add(inner);
  EXPECT_THROW(line->getChildrenMutable().add(line), IMsgIDException);
  EXPECT_THROW(inner->getChildrenMutable().add(line), IMsgIDException);
}

// Anchor and extras.

TEST_F(NodeOfADocument, KeepsTheLastAnchor) {
  const LineNode line = makeLine();
  EXPECT_EQ(line->getAnchorId(), u"");
  line->setAnchorId(u"a");
  line->setAnchorId(u"a longer one than the one before");
  EXPECT_EQ(line->getAnchorId(), u"a longer one than the one before");
  line->setAnchorId(u"");
  EXPECT_EQ(line->getAnchorId(), u"");
}

// Contributor data.

TEST_F(NodeOfADocument, HasNoContributorDataAtFirst) {
  const LineNode line = makeLine();
  EXPECT_TRUE(line->getContributorData().empty());
  EXPECT_TRUE(line->getContributorDataMutable().empty());
}

TEST_F(NodeOfADocument, HasItsContributorDataInOrderAndOnce) {
  const LineNode line = makeLine();
  std::vector<NodeContributorData> data;
  for (int i = 0; i < 40; ++i) {
    data.push_back(makeData());
    line->getContributorDataMutable().add(data.back());
    line->getContributorDataMutable().add(data[data.size() / 2]);
  }
  ASSERT_EQ(line->getContributorData().size(), data.size());
  for (std::size_t i = 0; i < data.size(); ++i) EXPECT_EQ(line->getContributorData()[i], data[i]);
  EXPECT_EQ(data[0]->getContainer(), line);
}

TEST_F(NodeOfADocument, ContributorDataNamesItsFeatureAndHasLineData) {
  const NodeContributorData data = makeData();
  EXPECT_EQ(data->getContributingFeature(), u"");
  data->setContributingFeature(u"folding");
  EXPECT_EQ(data->getContributingFeature(), u"folding");
  const LineData lineData = makeLineData();
  data->getLineDataListMutable().add(lineData);
  data->getLineDataListMutable().add(lineData);
  data->getLineDataListMutable().add(LineData());
  ASSERT_EQ(data->getLineDataList().size(), 1u);
  EXPECT_EQ(data->getLineDataList()[0], lineData);
  EXPECT_EQ(lineData->getContainer(), data);
  EXPECT_TRUE(contributors::kdzero::ContributorData::castFrom(data));
  EXPECT_FALSE(contributors::kdzero::ContributorData::castFrom(lineData));
}

TEST_F(NodeOfADocument, ContributorDataMovesToItsNewNode) {
  const LineNode first = makeLine();
  const LineNode second = makeLine();
  const NodeContributorData data = makeData();
  first->getContributorDataMutable().add(data);
  second->getContributorDataMutable().add(data);
  EXPECT_TRUE(first->getContributorData().empty());
  EXPECT_EQ(second->getContributorData().size(), 1u);

  const LineData lineData = makeLineData();
  data->getLineDataListMutable().add(lineData);
  const NodeContributorData other = makeData();
  other->getLineDataListMutable().add(lineData);
  EXPECT_TRUE(data->getLineDataList().empty());
}

TEST_F(NodeOfADocument, LineDataKeepsWhatItIsFilledWith) {
  const LineData lineData = makeLineData();
  EXPECT_TRUE(lineData->getData().empty());
  LineData::Impl::Data data{{"b", foundation::json::Value("text")},
                            {"a", foundation::json::Value(1.5)}};
  lineData->setData(data);
  data.clear();
  ASSERT_EQ(lineData->getData().size(), 2u);
  EXPECT_EQ(lineData->getData().begin()->first, "a");
  EXPECT_EQ(lineData->getData().at("b"), foundation::json::Value("text"));
}

// The document.

TEST_F(NodeOfADocument, AddedLastIsTheLastOne) {
  for (std::uint64_t i = 0; i < 10; ++i) {
    const Node node = makeLine();
    document.addChild(node);
    ASSERT_EQ(document.getNumberOfChildren(), i + 1);
    EXPECT_EQ(document.getChildAt(document.getNumberOfChildren() - 1), node);
  }
  EXPECT_EQ(document.getChildren().size(), 10u);
}

TEST_F(NodeOfADocument, AtAnIndexBehindTheEndIsAnError) {
  EXPECT_THROW(document.getChildAt(0), std::out_of_range);
  document.addChild(makeLine());
  EXPECT_THROW(document.getChildAt(1), std::out_of_range);
  EXPECT_THROW(document.getChildAt(~std::uint64_t{0}), std::out_of_range);
}

TEST_F(NodeOfADocument, AddedTwiceIsThereOnceAndTheEmptyHandleNever) {
  const LineNode line = makeLine();
  document.addChild(line);
  document.addChild(line);
  document.addChild(Node());
  EXPECT_EQ(document.getNumberOfChildren(), 1u);
}

TEST_F(NodeOfADocument, OfAnotherDocumentIsRefused) {
  using OtherModel =
      foundation::core::except::Exception<kd0::messages::ElementOfAnotherModel, std::exception>;
  TesseraDocument other;
  EXPECT_THROW(other.addChild(makeLine()), OtherModel);
  EXPECT_EQ(other.getNumberOfChildren(), 0u);
  EXPECT_NE(other.getModel(), model);
}

TEST_F(NodeOfADocument, AtTheTopHasNoParent) {
  const LineNode line = makeLine();
  document.addChild(line);
  EXPECT_FALSE(line->getParent());
  EXPECT_TRUE(line->getContainer());
  EXPECT_EQ(line->getContainer()->getMetaClass().getQualifiedName(),
            u"document::kdzero::TesseraDocument");
}

TEST_F(NodeOfADocument, TellsItsClass) {
  EXPECT_EQ(makeLine()->getMetaClass().getQualifiedName(), u"document::kdzero::LineNode");
  EXPECT_EQ(makeText()->getMetaClass().getQualifiedName(), u"document::kdzero::PlainTextNode");
  EXPECT_EQ(makeData()->getMetaClass().getQualifiedName(),
            u"contributors::kdzero::NodeContributorData");
  EXPECT_EQ(makeLineData()->getMetaClass().getQualifiedName(), u"contributors::kdzero::LineData");
}

}  // namespace
