#include <map>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>
#include <boost/uuid/uuid.hpp>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "failures/kdzero/MarkerInfo.hpp"
#include "failures/kdzero/ParserFailure.hpp"
#include "fl/i18n/ustring.hpp"
#include "foundation/json/Value.hpp"
#include "kd/zero/PrimitiveSequence.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace {

using document::kdzero::LineNode;
using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using failures::kdzero::ParserFailure;
using fl::i18n::ustring;
using foundation::json::Value;
using quenlith::syntax::Marker;
using FailureMarker = failures::kdzero::MarkerInfo;
using FailureData = std::map<std::string, Value>;

template <typename Record>
constexpr bool isRecord() {
  return std::is_default_constructible_v<Record> && std::is_copy_constructible_v<Record> &&
         std::is_copy_assignable_v<Record>;
}

static_assert(isRecord<ParserFailure>());
static_assert(isRecord<FailureMarker>());
static_assert(std::is_same_v<decltype(std::declval<const ParserFailure&>() ==
                                      std::declval<const ParserFailure&>()),
                             bool>);

TEST(FailureRecordsContract, TheMarkerInfoIsFilledByChainedSetters) {
  const Marker marker(u"// <@text:anchor#intro>");
  FailureMarker info;
  EXPECT_EQ(&info.setFeatureId(marker.getElement())
                 .setSubFeatureId(marker.getType())
                 .setMarkerId(marker.getId()),
            &info);
  EXPECT_EQ(info.getFeatureId(), u"text");
  EXPECT_EQ(info.getSubFeatureId(), u"anchor");
  EXPECT_EQ(info.getMarkerId(), u"intro");
}

TEST(FailureRecordsContract, AFreshMarkerInfoIsEmpty) {
  const FailureMarker info;
  EXPECT_EQ(info.getMarkerId(), u"");
  EXPECT_EQ(info.getFeatureId(), u"");
  EXPECT_EQ(info.getSubFeatureId(), u"");
}

TEST(FailureRecordsContract, TheTextsAreAcceptedInEveryForm) {
  const ustring constant = u"constant";
  ustring changing = u"changing";
  FailureMarker info;
  info.setMarkerId(constant).setFeatureId(changing).setSubFeatureId(ustring(u"temporary"));
  EXPECT_EQ(info.getMarkerId(), u"constant");
  EXPECT_EQ(info.getFeatureId(), u"changing");
  EXPECT_EQ(info.getSubFeatureId(), u"temporary");
  info.setMarkerId(u"literal");
  EXPECT_EQ(info.getMarkerId(), u"literal");

  ParserFailure failure;
  failure.setFailureId(constant);
  EXPECT_EQ(failure.getFailureId(), u"constant");
  failure.setFailureId(changing);
  EXPECT_EQ(failure.getFailureId(), u"changing");
  failure.setFailureId(ustring(u"temporary"));
  EXPECT_EQ(failure.getFailureId(), u"temporary");
  failure.setFailureId(u"literal");
  EXPECT_EQ(failure.getFailureId(), u"literal");
}

TEST(FailureRecordsContract, TheFailureIsFilledByChainedSetters) {
  FailureMarker info;
  info.setMarkerId(u"m");
  FailureData data;
  data["position"] = Value(std::vector<Value>{Value(7.0), Value(3.0)});
  ParserFailure failure;
  EXPECT_EQ(
      &failure.setFailureId(u"invalid_position_data").setMarkerInfo(info).setFailureData(data),
      &failure);
  info.setMarkerId(u"changed");
  data.clear();
  EXPECT_EQ(failure.getFailureId(), u"invalid_position_data");
  EXPECT_EQ(failure.getMarkerInfo().getMarkerId(), u"m");
  EXPECT_EQ(failure.getFailureData().size(), 1U);
  EXPECT_EQ(failure.getFailureData().begin()->first, "position");
}

TEST(FailureRecordsContract, TheParametersMayBeConstantOrTemporary) {
  const FailureMarker info;
  const FailureData data{{"key", Value(1.0)}};
  ParserFailure failure;
  failure.setMarkerInfo(info).setFailureData(data);
  EXPECT_EQ(failure.getFailureData().size(), 1U);
  failure.setMarkerInfo(FailureMarker().setFeatureId(u"task")).setFailureData(FailureData());
  EXPECT_EQ(failure.getMarkerInfo().getFeatureId(), u"task");
  EXPECT_TRUE(failure.getFailureData().empty());
}

TEST(FailureRecordsContract, AFailureEqualsItsCopy) {
  ParserFailure failure;
  failure.setFailureId(u"overlapping_task_marker")
      .setMarkerInfo(FailureMarker().setMarkerId(u"t1"));
  const ParserFailure copy(failure);
  EXPECT_TRUE(copy == failure);
  ParserFailure assigned;
  assigned = failure;
  EXPECT_TRUE(assigned == failure);
  EXPECT_EQ(assigned.getMarkerInfo().getMarkerId(), u"t1");
}

TEST(FailureRecordsContract, ACopyKeepsItsFieldsWhenTheOriginalChanges) {
  ParserFailure failure;
  failure.setFailureId(u"before");
  const ParserFailure copy(failure);
  failure.setFailureId(u"after");
  EXPECT_EQ(copy.getFailureId(), u"before");
}

TEST(FailureRecordsContract, TheSameFailureTwiceOnANodeIsOneRecord) {
  TesseraDocument document;
  const Node node = LineNode::Builder(document.getModel()).createLineNode(boost::uuids::uuid{});
  ParserFailure failure;
  failure.setFailureId(u"missing_task_marker_pair");
  failure.setMarkerInfo(FailureMarker().setFeatureId(u"task").setMarkerId(u"t1"));
  failure.setFailureData({{"text", Value(std::string("Fit"))}});
  node->getParserFailuresMutable().add(failure);
  node->getParserFailuresMutable().add(failure);
  ASSERT_EQ(node->getParserFailuresMutable().size(), 1U);
  EXPECT_TRUE(node->getParserFailuresMutable().at(0) == failure);
}

TEST(FailureRecordsContract, TheNodeStoresACopy) {
  TesseraDocument document;
  const Node node = LineNode::Builder(document.getModel()).createLineNode(boost::uuids::uuid{});
  ParserFailure failure;
  failure.setFailureId(u"stored");
  node->getParserFailuresMutable().add(failure);
  failure.setFailureId(u"changed");
  EXPECT_EQ(node->getParserFailuresMutable().at(0).getFailureId(), u"stored");
}

}  // namespace
