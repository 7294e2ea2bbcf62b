#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>
#include <boost/uuid/uuid.hpp>

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "fl/i18n/ustring.hpp"
#include "tessera/contentmodel/kdzero/LiveTaskData.hpp"

namespace {

using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::TesseraDocument;
using fl::i18n::ustring;
using tessera::contentmodel::kdzero::LiveTaskData;

static_assert(std::is_default_constructible_v<LiveTaskData>);
static_assert(std::is_copy_constructible_v<LiveTaskData>);
static_assert(
    std::is_same_v<decltype(std::declval<const LiveTaskData&>().getTaskId()), const ustring&>);
static_assert(std::is_same_v<
              decltype(std::declval<LiveTaskData&>().setTaskId(std::declval<const ustring&>())),
              LiveTaskData&>);
static_assert(std::is_same_v<decltype(std::declval<LiveTaskData&>().setNumCodeLines(
                                 std::declval<const std::uint16_t&>())),
                             LiveTaskData&>);

TEST(LiveTaskDataContract, EverySetterReturnsTheRecordItself) {
  LiveTaskData data;
  const ustring value = u"v";
  EXPECT_EQ(&data.setTaskId(value), &data);
  EXPECT_EQ(&data.setText(value), &data);
  EXPECT_EQ(&data.setAppIdentifier(value), &data);
  EXPECT_EQ(&data.setAppState(value), &data);
  EXPECT_EQ(&data.setAppVariables(value), &data);
  EXPECT_EQ(&data.setAppVariablesUserMap(value), &data);
  EXPECT_EQ(&data.setView(value), &data);
  EXPECT_EQ(&data.setExecutionModel(value), &data);
  EXPECT_EQ(&data.setAutoRun(value), &data);
  EXPECT_EQ(&data.setCollapsed(value), &data);
  EXPECT_EQ(&data.setNumCodeLines(1), &data);
}

TEST(LiveTaskDataContract, EveryFieldIsSetByASetterThatChains) {
  LiveTaskData data;
  data.setTaskId(u"task id")
      .setText(u"text")
      .setAppIdentifier(u"app identifier")
      .setAppState(u"app state")
      .setAppVariables(u"app variables")
      .setAppVariablesUserMap(u"user map")
      .setView(u"view")
      .setExecutionModel(u"execution model")
      .setAutoRun(u"auto run")
      .setCollapsed(u"collapsed")
      .setNumCodeLines(7);
  EXPECT_EQ(data.getTaskId(), u"task id");
  EXPECT_EQ(data.getText(), u"text");
  EXPECT_EQ(data.getAppIdentifier(), u"app identifier");
  EXPECT_EQ(data.getAppState(), u"app state");
  EXPECT_EQ(data.getAppVariables(), u"app variables");
  EXPECT_EQ(data.getAppVariablesUserMap(), u"user map");
  EXPECT_EQ(data.getView(), u"view");
  EXPECT_EQ(data.getExecutionModel(), u"execution model");
  EXPECT_EQ(data.getAutoRun(), u"auto run");
  EXPECT_EQ(data.getCollapsed(), u"collapsed");
  EXPECT_EQ(data.getNumCodeLines(), 7);
}

TEST(LiveTaskDataContract, ATextIsAcceptedInEveryForm) {
  const ustring constant = u"constant";
  ustring changing = u"changing";
  LiveTaskData data;
  data.setTaskId(constant);
  EXPECT_EQ(data.getTaskId(), u"constant");
  data.setTaskId(changing);
  EXPECT_EQ(data.getTaskId(), u"changing");
  data.setTaskId(ustring(u"temporary"));
  EXPECT_EQ(data.getTaskId(), u"temporary");
  data.setTaskId(u"literal");
  EXPECT_EQ(data.getTaskId(), u"literal");
}

TEST(LiveTaskDataContract, TheLineCountIsSixteenBitsWide) {
  LiveTaskData data;
  data.setNumCodeLines(std::numeric_limits<std::uint16_t>::max());
  EXPECT_EQ(data.getNumCodeLines(), 65535);
}

TEST(LiveTaskDataContract, AutoRunAndCollapsedAreText) {
  LiveTaskData data;
  data.setAutoRun(u"sometimes").setCollapsed(u"no");
  EXPECT_EQ(data.getAutoRun(), u"sometimes");
  EXPECT_EQ(data.getCollapsed(), u"no");
}

TEST(LiveTaskDataContract, ACopyIsIndependent) {
  LiveTaskData data;
  data.setText(u"before");
  const LiveTaskData copy(data);
  data.setText(u"after");
  EXPECT_EQ(copy.getText(), u"before");
}

TEST(LiveTaskDataContract, ANodeStoresItsOwnCopy) {
  TesseraDocument document;
  const LiveAppIntegratedInlineNode node =
      LiveAppIntegratedInlineNode::Builder(document.getModel())
          .createLiveAppIntegratedInlineNode(boost::uuids::uuid{});
  LiveTaskData data;
  data.setTaskId(u"t1").setNumCodeLines(3);
  const LiveTaskData& unchanging = data;
  node->setLiveTaskData(unchanging);
  data.setTaskId(u"t2").setNumCodeLines(4);
  EXPECT_EQ(node->getLiveTaskData().getTaskId(), u"t1");
  EXPECT_EQ(node->getLiveTaskData().getNumCodeLines(), 3);

  LiveTaskData copy = node->getLiveTaskData();
  copy.setNumCodeLines(9);
  EXPECT_EQ(node->getLiveTaskData().getNumCodeLines(), 3);
  node->setLiveTaskData(copy);
  EXPECT_EQ(node->getLiveTaskData().getNumCodeLines(), 9);
}

}  // namespace
