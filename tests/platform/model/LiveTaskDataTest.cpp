#include "tessera/contentmodel/kdzero/LiveTaskData.hpp"

#include <gtest/gtest.h>

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"

namespace {

using document::kdzero::LiveAppIntegratedInlineNode;
using tessera::contentmodel::kdzero::LiveTaskData;

LiveTaskData filled() {
  return LiveTaskData()
      .setTaskId(u"id")
      .setText(u"text")
      .setAppIdentifier(u"app")
      .setAppState(u"state")
      .setAppVariables(u"variables")
      .setAppVariablesUserMap(u"map")
      .setView(u"view")
      .setExecutionModel(u"model")
      .setAutoRun(u"auto")
      .setCollapsed(u"collapsed")
      .setNumCodeLines(65535);
}

TEST(LiveTaskData, IsEmptyAtFirst) {
  const LiveTaskData data;
  EXPECT_EQ(data.getTaskId(), u"");
  EXPECT_EQ(data.getView(), u"");
  EXPECT_EQ(data.getNumCodeLines(), 0);
  EXPECT_EQ(data, LiveTaskData());
}

TEST(LiveTaskData, KeepsEachFieldApart) {
  const LiveTaskData data = filled();
  EXPECT_EQ(data.getTaskId(), u"id");
  EXPECT_EQ(data.getText(), u"text");
  EXPECT_EQ(data.getAppIdentifier(), u"app");
  EXPECT_EQ(data.getAppState(), u"state");
  EXPECT_EQ(data.getAppVariables(), u"variables");
  EXPECT_EQ(data.getAppVariablesUserMap(), u"map");
  EXPECT_EQ(data.getView(), u"view");
  EXPECT_EQ(data.getExecutionModel(), u"model");
  EXPECT_EQ(data.getAutoRun(), u"auto");
  EXPECT_EQ(data.getCollapsed(), u"collapsed");
  EXPECT_EQ(data.getNumCodeLines(), 65535);
}

TEST(LiveTaskData, SettersReturnTheRecordItself) {
  LiveTaskData data;
  EXPECT_EQ(&data.setTaskId(u"id"), &data);
  EXPECT_EQ(&data.setAutoRun(u"true"), &data);
  EXPECT_EQ(&data.setNumCodeLines(1), &data);
}

TEST(LiveTaskData, DiffersWhenOneFieldDoes) {
  EXPECT_EQ(filled(), filled());
  EXPECT_NE(filled(), filled().setView(u""));
  EXPECT_NE(filled(), filled().setNumCodeLines(0));
}

class TaskNode : public testing::Test {
 protected:
  LiveAppIntegratedInlineNode node = LiveAppIntegratedInlineNode::Builder(kd::zero::Model::create())
                                         .createLiveAppIntegratedInlineNode(boost::uuids::uuid{});
};

TEST_F(TaskNode, HasNoIdAndNoDataAtFirst) {
  EXPECT_EQ(node->getId(), u"");
  EXPECT_EQ(node->getLiveTaskData(), LiveTaskData());
}

TEST_F(TaskNode, KeepsItsId) {
  node->setId(u"t1");
  node->setId(u"t2");
  EXPECT_EQ(node->getId(), u"t2");
}

TEST_F(TaskNode, StoresACopyThatIsIndependentOfTheRecord) {
  LiveTaskData data = filled();
  node->setLiveTaskData(data);
  data.setTaskId(u"changed").setNumCodeLines(1);
  EXPECT_EQ(node->getLiveTaskData(), filled());

  LiveTaskData read = node->getLiveTaskData();
  read.setView(u"changed");
  EXPECT_EQ(node->getLiveTaskData(), filled());
}

TEST_F(TaskNode, TakesItsOwnDataAgain) {
  node->setLiveTaskData(filled());
  node->setLiveTaskData(node->getLiveTaskData());
  EXPECT_EQ(node->getLiveTaskData(), filled());
}

}  // namespace
