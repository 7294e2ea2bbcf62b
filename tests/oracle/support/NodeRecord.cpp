#include "oracle/support/NodeRecord.hpp"

#include <algorithm>

#include "oracle/support/show.hpp"
#include "oracle/support/showJson.hpp"

namespace quenlith::oracle {

namespace {

const char* nameOf(NodeKind kind) {
  switch (kind) {
    case NodeKind::kLine:
      return "LineNode";
    case NodeKind::kPlainText:
      return "PlainTextNode";
    case NodeKind::kTaskLine:
      return "LiveAppLineNode";
    case NodeKind::kTaskInline:
      return "LiveAppIntegratedInlineNode";
    case NodeKind::kOther:
      break;
  }
  return "other node";
}

std::string showTask(const TaskRecord& task) {
  return " task " + show(task.taskId) + ' ' + show(task.text) + ' ' + show(task.appIdentifier) +
         ' ' + show(task.appState) + ' ' + show(task.appVariables) + ' ' +
         show(task.appVariablesUserMap) + ' ' + show(task.view) + ' ' + show(task.executionModel) +
         ' ' + show(task.autoRun) + ' ' + show(task.collapsed) + " lines " +
         std::to_string(task.numCodeLines);
}

std::string showFailure(const FailureRecord& failure) {
  return "failure " + show(failure.failureId) + " feature " + show(failure.featureId) + " sub " +
         show(failure.subFeatureId) + " id " + show(failure.markerId) + ' ' +
         showJson(failure.data);
}

std::string showContribution(const ContributionRecord& contribution) {
  std::string out = "contribution " + show(contribution.feature);
  for (const JsonMap& data : contribution.lineData) out += ' ' + showJson(data);
  return out;
}

std::string showNode(const NodeRecord& node) {
  std::string out = nameOf(node.kind);
  out += " text " + show(node.text) + " anchor " + show(node.anchorId);
  if (node.kind == NodeKind::kTaskInline) out += " id " + show(node.id) + showTask(node.task);
  return out;
}

void listNode(const NodeRecord& node, const std::string& indent, std::vector<std::string>& lines) {
  lines.push_back(indent + showNode(node));
  for (const auto& failure : node.failures) lines.push_back(indent + "  " + showFailure(failure));
  for (const auto& contribution : node.contributions) {
    lines.push_back(indent + "  " + showContribution(contribution));
  }
  for (const auto& child : node.children) listNode(child, indent + "  ", lines);
}

}  // namespace

NodeRecord NodeRecord::plainText(const ustring& text) {
  NodeRecord node = of(NodeKind::kPlainText);
  node.text = text;
  return node;
}

NodeRecord NodeRecord::of(NodeKind kind) {
  NodeRecord node;
  node.kind = kind;
  return node;
}

void NodeRecord::addFailure(const FailureRecord& failure) {
  if (std::find(failures.begin(), failures.end(), failure) == failures.end()) {
    failures.push_back(failure);
  }
}

std::vector<std::string> listing(const DocumentRecord& document) {
  std::vector<std::string> lines;
  for (const NodeRecord& node : document) listNode(node, "", lines);
  return lines;
}

}  // namespace quenlith::oracle
