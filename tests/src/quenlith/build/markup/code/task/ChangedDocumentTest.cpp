#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserFixture.hpp"
#include "support/LogCollector.hpp"

namespace quenlith::test {
namespace {

using document::kdzero::LineNode;
using document::kdzero::PlainTextNode;
using syntax::Marker;
using tessera::contentmodel::kdzero::LiveTaskData;
using Records = std::vector<std::string>;

/// Creates another task node for the text that an output marker refers to.
class TaskNodeMaker final : public build::markup::code::CodeElementParser {
 public:
  bool canParse(const Marker& marker) override { return marker.getElement() == u"output"; }
  Node parse(const kd::zero::Model& model,
             const build::markup::code::CodeElement& /*element*/) override {
    return LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode({});
  }
};

// Changes that the host makes while a task is open.

TEST_F(TaskSnippetParser, KeepsWhatTheHostChangedInTheTaskData) {
  openTask();
  LiveTaskData data = taskNode(0)->getLiveTaskData();
  taskNode(0)->setLiveTaskData(data.setView(u"the host's").setTaskId(u"the host's id"));
  LogRecords records;
  parse(kOpening, 3, kBlock);
  EXPECT_EQ(taskNode(0)->getLiveTaskData(), data.setNumCodeLines(2));
  EXPECT_THAT(records.get(), testing::Contains("the host's id"));
}

TEST_F(TaskSnippetParser, ClosesWithoutAHeaderWhenTheHostSwitchedDocuments) {
  openTask();
  document = std::make_shared<TesseraDocument>();
  LogRecords records;
  EXPECT_EQ(parse(kOpening, 3, kBlock).type.kind, 0);
  EXPECT_EQ(records.get(),
            (Records{"Parsing using the task parser", "End of task found, cleaning up 2",
                     "In LineNodeParserService"}));
  // The task is closed anyway.
  EXPECT_EQ(parse(u"x", 3, kBlock).type.kind, 3);
  EXPECT_EQ(document->getNumberOfChildren(), 2u);
}

TEST_F(TaskSnippetParser, WritesTheCountWhereverATaskNodeIsTheFirstChild) {
  const kd::zero::Model model = document->getModel();
  const LineNode line = LineNode::Builder(model).createLineNode({});
  line->getChildrenMutable().add(
      LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode({}));
  taskNodeOf(line)->setLiveTaskData(LiveTaskData().setTaskId(u"of the host").setView(u"v"));
  document->addChild(line);
  LogRecords records;
  // The stored index is 0, which is that of the host's line.
  EXPECT_EQ(parse(u"x # <@task#b> # <@task#b>", 3, u"").type.kind, 0);
  EXPECT_EQ(taskNode(0)->getLiveTaskData(),
            LiveTaskData().setTaskId(u"of the host").setView(u"v").setNumCodeLines(1));
  EXPECT_THAT(records.get(), testing::Contains("of the host"));
}

TEST_F(TaskSnippetParser, WritesTheCountIntoATaskNodeOfAnExtension) {
  provider->elementParsers = {std::make_shared<TaskNodeMaker>(), defaultParser};
  parse(u"abc # <@output [0,3]>", 3, u"");
  ASSERT_TRUE(LineNode::castFrom(node(0)));
  EXPECT_EQ(codeLines(0), 0);
  // No header was added, so the stored index is that of the line.
  EXPECT_EQ(parse(kOpening, 0, kBlock).type.kind, 0);
  EXPECT_EQ(codeLines(0), 2);
}

TEST_F(TaskSnippetParser, TouchesNoNodeWithoutATaskNodeAsFirstChild) {
  const kd::zero::Model model = document->getModel();
  // The node at the stored index has no child, or a child of another kind.
  const LineNode childless = LineNode::Builder(model).createLineNode({});
  document->addChild(childless);
  LogRecords records;
  parse(u"x # <@task#b> # <@task#b>", 3, u"");
  EXPECT_THAT(records.get(), testing::Contains("End of task found, cleaning up 1"));
  EXPECT_TRUE(childless->getChildren().empty());

  document = std::make_shared<TesseraDocument>();
  const LineNode withText = LineNode::Builder(document->getModel()).createLineNode({});
  withText->getChildrenMutable().add(
      PlainTextNode::Builder(document->getModel()).createPlainTextNode({}));
  document->addChild(withText);
  EXPECT_EQ(parse(u"x # <@task#b> # <@task#b>", 3, u"").type.kind, 0);
  EXPECT_EQ(withText->getChildren().size(), 1u);
}

}  // namespace
}  // namespace quenlith::test
