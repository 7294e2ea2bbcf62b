#include "oracle/support/readDocument.hpp"

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"

namespace quenlith::oracle {

namespace {

using namespace document::kdzero;

NodeKind kindOf(const Node& node) {
  if (!node->getUuid().is_nil()) return NodeKind::kOther;
  const auto* metaClass = &node->getMetaClass();
  if (metaClass == &LineNode::Impl::classOf()) return NodeKind::kLine;
  if (metaClass == &PlainTextNode::Impl::classOf()) return NodeKind::kPlainText;
  if (metaClass == &LiveAppLineNode::Impl::classOf()) return NodeKind::kTaskLine;
  if (metaClass == &LiveAppIntegratedInlineNode::Impl::classOf()) return NodeKind::kTaskInline;
  return NodeKind::kOther;
}

TaskRecord readTask(const tessera::contentmodel::kdzero::LiveTaskData& data) {
  TaskRecord task;
  task.taskId = data.getTaskId();
  task.text = data.getText();
  task.appIdentifier = data.getAppIdentifier();
  task.appState = data.getAppState();
  task.appVariables = data.getAppVariables();
  task.appVariablesUserMap = data.getAppVariablesUserMap();
  task.view = data.getView();
  task.executionModel = data.getExecutionModel();
  task.autoRun = data.getAutoRun();
  task.collapsed = data.getCollapsed();
  task.numCodeLines = data.getNumCodeLines();
  return task;
}

FailureRecord readFailure(const failures::kdzero::ParserFailure& failure) {
  const auto& info = failure.getMarkerInfo();
  FailureRecord record;
  record.failureId = failure.getFailureId();
  record.featureId = info.getFeatureId();
  record.subFeatureId = info.getSubFeatureId();
  record.markerId = info.getMarkerId();
  record.data = failure.getFailureData();
  return record;
}

ContributionRecord readContribution(const contributors::kdzero::NodeContributorData& data) {
  ContributionRecord record;
  record.feature = data->getContributingFeature();
  for (const auto& lineData : data->getLineDataList())
    record.lineData.push_back(lineData->getData());
  return record;
}

void readOwnFields(const Node& node, NodeRecord& record) {
  if (record.kind == NodeKind::kPlainText) {
    record.text = PlainTextNode::share(node.get())->getText();
  } else if (record.kind == NodeKind::kTaskInline) {
    const auto inlineNode = LiveAppIntegratedInlineNode::share(node.get());
    record.id = inlineNode->getId();
    record.task = readTask(inlineNode->getLiveTaskData());
  }
}

}  // namespace

NodeRecord readNode(const Node& node) {
  NodeRecord record = NodeRecord::of(kindOf(node));
  record.anchorId = node->getAnchorId();
  readOwnFields(node, record);
  for (const Node& child : node->getChildren()) record.children.push_back(readNode(child));
  for (const auto& data : node->getContributorData()) {
    record.contributions.push_back(readContribution(data));
  }
  for (const auto& failure : node->getParserFailures()) {
    record.failures.push_back(readFailure(failure));
  }
  return record;
}

DocumentRecord readDocument(const TesseraDocument& document) {
  DocumentRecord record;
  for (std::uint64_t i = 0; i < document.getNumberOfChildren(); ++i) {
    record.push_back(readNode(document.getChildAt(i)));
  }
  return record;
}

}  // namespace quenlith::oracle
