#include "failures/kdzero/ParserFailure.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "platform/model/Witness.hpp"

namespace {

using document::kdzero::LineNode;
using failures::kdzero::MarkerInfo;
using failures::kdzero::ParserFailure;
using foundation::json::Value;
using quenlith::test::Witness;

ParserFailure filled() {
  return ParserFailure()
      .setFailureId(u"invalid_position_data")
      .setMarkerInfo(
          MarkerInfo().setMarkerId(u"m").setFeatureId(u"text").setSubFeatureId(u"anchor"))
      .setFailureData({{"position", std::vector<Value>{Value(7.0), Value(3.0)}}});
}

std::size_t hashOf(const ParserFailure& failure) {
  return std::hash<ParserFailure>{}(failure);
}

TEST(ParserFailure, IsEmptyAtFirst) {
  const ParserFailure failure;
  EXPECT_EQ(failure.getFailureId(), u"");
  EXPECT_EQ(failure.getMarkerInfo(), MarkerInfo());
  EXPECT_TRUE(failure.getFailureData().empty());
}

TEST(ParserFailure, KeepsEachFieldApart) {
  const ParserFailure failure = filled();
  EXPECT_EQ(failure.getFailureId(), u"invalid_position_data");
  EXPECT_EQ(failure.getMarkerInfo().getMarkerId(), u"m");
  EXPECT_EQ(failure.getMarkerInfo().getFeatureId(), u"text");
  EXPECT_EQ(failure.getMarkerInfo().getSubFeatureId(), u"anchor");
  ASSERT_EQ(failure.getFailureData().size(), 1u);
  EXPECT_EQ(failure.getFailureData().at("position"),
            Value(std::vector<Value>{Value(7.0), Value(3.0)}));
}

TEST(ParserFailure, SettersReturnTheRecordItself) {
  ParserFailure failure;
  EXPECT_EQ(&failure.setFailureId(u"x"), &failure);
  EXPECT_EQ(&failure.setMarkerInfo({}), &failure);
  EXPECT_EQ(&failure.setFailureData({}), &failure);
  MarkerInfo marker;
  EXPECT_EQ(&marker.setMarkerId(u"x"), &marker);
  EXPECT_EQ(&marker.setFeatureId(u"x"), &marker);
  EXPECT_EQ(&marker.setSubFeatureId(u"x"), &marker);
}

TEST(ParserFailure, StoresCopies) {
  MarkerInfo marker = MarkerInfo().setMarkerId(u"m");
  ParserFailure::Data data{{"key", Value(1.0)}};
  const ParserFailure failure = ParserFailure().setMarkerInfo(marker).setFailureData(data);
  marker.setMarkerId(u"changed");
  data["key"] = Value(2.0);
  EXPECT_EQ(failure.getMarkerInfo().getMarkerId(), u"m");
  EXPECT_EQ(failure.getFailureData().at("key"), Value(1.0));
}

TEST(ParserFailure, EqualsItsCopyInValueAndHash) {
  const ParserFailure failure = filled();
  const ParserFailure copy(failure);  // NOLINT(performance-unnecessary-copy-initialization): meant
  EXPECT_EQ(failure, copy);
  EXPECT_EQ(hashOf(failure), hashOf(copy));
}

TEST(ParserFailure, EqualsItsCopyWithANumberThatIsNone) {
  const ParserFailure failure = filled().setFailureData(
      {{"a", Value(std::nan(""))}, {"b", Value(std::numeric_limits<float>::quiet_NaN())}});
  const ParserFailure copy(failure);  // NOLINT(performance-unnecessary-copy-initialization): meant
  EXPECT_EQ(failure, copy);
  EXPECT_EQ(hashOf(failure), hashOf(copy));
}

TEST(ParserFailure, ZerosThatAreEqualHaveOneHash) {
  const ParserFailure plus = filled().setFailureData({{"a", Value(0.0)}});
  const ParserFailure minus = filled().setFailureData({{"a", Value(-0.0)}});
  EXPECT_EQ(plus, minus);
  EXPECT_EQ(hashOf(plus), hashOf(minus));
}

TEST(ParserFailure, CopiesShareTheDataUntilOneIsChanged) {
  const ParserFailure::Data data{{"key", std::vector<Value>{Value(1.0), Value("text")}}};
  const ParserFailure first = ParserFailure().setFailureData(data);
  ParserFailure changed(first);
  changed.setFailureId(u"other");
  EXPECT_EQ(&changed.getFailureData(), &first.getFailureData());

  changed.setFailureData({{"key", Value(2.0)}});
  EXPECT_EQ(first.getFailureData(), data);
  EXPECT_NE(changed, first);
}

TEST(ParserFailure, DiffersWhenOneFieldDoes) {
  const ParserFailure failure = filled();
  const MarkerInfo& marker = failure.getMarkerInfo();
  const std::vector<ParserFailure> others{
      filled().setFailureId(u"x"),
      filled().setMarkerInfo(MarkerInfo(marker).setMarkerId(u"x")),
      filled().setMarkerInfo(MarkerInfo(marker).setFeatureId(u"x")),
      filled().setMarkerInfo(MarkerInfo(marker).setSubFeatureId(u"x")),
      filled().setFailureData({}),
      filled().setFailureData({{"place", failure.getFailureData().at("position")}}),
      filled().setFailureData({{"position", std::vector<Value>{Value(7.0), Value(4.0)}}})};
  for (const ParserFailure& other : others) {
    EXPECT_NE(failure, other);
    EXPECT_NE(hashOf(failure), hashOf(other));
  }
}

TEST(ParserFailure, TellsTheKindsOfNumbersApart) {
  EXPECT_NE(filled().setFailureData({{"a", Value(1.0)}}),
            filled().setFailureData({{"a", Value(1)}}));
}

// On a node.

class FailuresOfANode : public testing::Test {
 protected:
  kd::zero::Model model = kd::zero::Model::create();
  LineNode node = LineNode::Builder(model).createLineNode(boost::uuids::uuid{});
};

TEST_F(FailuresOfANode, AreNoneAtFirst) {
  EXPECT_TRUE(node->getParserFailures().empty());
  EXPECT_TRUE(node->getParserFailuresMutable().empty());
  EXPECT_TRUE(node->getParserFailures().empty());
}

TEST_F(FailuresOfANode, AttachedTwiceAreThereOnceAndAnnouncedOnce) {
  Witness witness;
  model.addListener(witness);
  const ParserFailure failure = filled().setFailureData({{"a", Value(std::nan(""))}});
  node->getParserFailuresMutable().add(failure);
  node->getParserFailuresMutable().add(failure);
  ASSERT_EQ(node->getParserFailures().size(), 1u);
  EXPECT_EQ(node->getParserFailures()[0], failure);
  EXPECT_EQ(witness.sizes, std::vector<std::size_t>{0});
  EXPECT_EQ(model.getNumberOfOperations(), 1u);

  node->getParserFailuresMutable().add(filled());
  EXPECT_EQ(witness.sizes, (std::vector<std::size_t>{0, 1}));
  using Record = kd::zero::OCDChangeOfPrimitiveSequence<ParserFailure>;
  const auto* record = dynamic_cast<const Record*>(witness.changes[1].get());
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->getIndex(), 1);
  EXPECT_EQ(record->getValue(), filled());
  model.removeListener(witness);
}

TEST_F(FailuresOfANode, KeepTheirOrderHoweverManyThereAre) {
  constexpr std::size_t kMany = 1000;
  for (std::size_t i = 0; i < kMany; ++i) {
    const std::string text = std::to_string(i);
    node->getParserFailuresMutable().add(
        filled().setFailureId(std::u16string(text.begin(), text.end())));
    node->getParserFailuresMutable().add(node->getParserFailures()[i / 2]);
  }
  ASSERT_EQ(node->getParserFailures().size(), kMany);
  EXPECT_EQ(node->getParserFailures()[999].getFailureId(), u"999");
}

TEST_F(FailuresOfANode, KnowTheirOwner) {
  EXPECT_EQ(node->getParserFailuresMutable().getOwner(), node);
  EXPECT_EQ(node->getContributorDataMutable().getOwner(), node);
  EXPECT_EQ(node->getChildren().getOwner(), node);
}

}  // namespace
