#include "tessera/tree/NodeRows.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/formats/NodeKind.hpp"
#include "tessera/pieces/ControlNode.hpp"
#include "tessera/pieces/OutputNode.hpp"
#include "tessera/session/plainLine.hpp"

namespace tessera::tree {

using document::kdzero::Node;
using formats::kindOf;
using formats::NodeKind;

namespace {

constexpr std::size_t kIndent = TreeRows::kHangingIndent;
// Deeper rows are indented no further: the text of a very deep tree would be mostly blanks.
constexpr std::size_t kDeepestIndent = 32 * kIndent;

}  // namespace

std::string_view colorOf(const Node& node) {
  if (kindOf(node) == NodeKind::kTask) return colors::kTask;
  const auto& nodeClass = node->getMetaClass();
  if (&nodeClass == &pieces::OutputNode::Impl::classOf()) return colors::kOutput;
  if (&nodeClass == &pieces::ControlNode::Impl::classOf()) return colors::kControl;
  return colors::kOther;
}

void NodeRows::appendTrees(const Node* begin, const Node* end, std::size_t indent) {
  struct Level {
    const Node* next;
    const Node* end;
  };
  std::vector<Level> levels{{begin, end}};
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.end) {
      levels.pop_back();
      continue;
    }
    const Node& node = *level.next++;
    const std::size_t depth = std::min(indent + (levels.size() - 1) * kIndent, kDeepestIndent);
    appendNode(node, depth);
    appendExtras(node, depth + kIndent);
    levels.push_back({node->getChildren().begin(), node->getChildren().end()});
  }
}

void NodeRows::appendChildren(const Node& node, std::size_t indent) {
  appendTrees(node->getChildren().begin(), node->getChildren().end(), indent);
}

void NodeRows::appendNode(const Node& node, std::size_t indent) {
  if (kindOf(node) == NodeKind::kTask) return appendTask(node, indent);
  std::string text = describeNode(node, detail);
  if (formats::hasText(node)) text += " " + diagnostics::quotedText(session::textOf(node));
  rows.appendNote(indent, {std::move(text), colorOf(node)});
}

void NodeRows::appendTask(const Node& node, std::size_t indent) {
  const auto* task =
      static_cast<const document::kdzero::LiveAppIntegratedInlineNode::Impl*>(node.get());
  rows.appendNote(indent, {describeTask(task->getId(), task->getLiveTaskData()), colors::kTask,
                           std::string_view("task").size()});
  std::string settings = describeSettings(task->getLiveTaskData(), task->getId(), detail);
  if (settings.empty()) return;
  rows.appendNote(indent + kIndent, {std::move(settings), colors::kDetail});
}

void NodeRows::appendExtras(const Node& node, std::size_t indent) {
  if (!node->getAnchorId().empty()) {
    const bool isUnicode = rows.rowStyle().symbols == Symbols::kUnicode;
    rows.appendNote(
        indent, {(isUnicode ? "⚓ " : "anchor ") + idText(node->getAnchorId()), colors::kAnchor});
  }
  for (const auto& contribution : node->getContributorData()) {
    rows.appendNote(indent, {describeContribution(contribution, detail), colors::kDetail});
  }
  failureCount += node->getParserFailures().size();
  for (const auto& failure : node->getParserFailures()) {
    rows.appendNote(indent, {describeFailure(failure, detail), colors::kFailure,
                             std::string_view("failure").size()});
  }
}

}  // namespace tessera::tree
