#include "tessera/formats/NodeKind.hpp"

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"

namespace tessera::formats {

using namespace document::kdzero;

namespace {

bool hasNoExtras(const Node& node) noexcept {
  return node->getAnchorId().empty() && node->getParserFailures().empty() &&
         node->getContributorData().empty();
}

}  // namespace

NodeKind kindOf(const Node& node) noexcept {
  // No class is derived from these.
  const auto* const nodeClass = &node->getMetaClass();
  if (nodeClass == &PlainTextNode::Impl::classOf()) return NodeKind::kPlainText;
  if (nodeClass == &LiveAppLineNode::Impl::classOf()) return NodeKind::kTaskLine;
  if (nodeClass == &LiveAppIntegratedInlineNode::Impl::classOf()) return NodeKind::kTask;
  return NodeKind::kLine;
}

std::string_view nameOf(NodeKind kind) noexcept {
  constexpr std::string_view kNames[] = {"LineNode", "PlainTextNode", "LiveAppLineNode",
                                         "LiveAppIntegratedInlineNode"};
  return kNames[static_cast<std::size_t>(kind)];
}

bool isBareText(const Node& node) noexcept {
  return kindOf(node) == NodeKind::kPlainText && node->getChildren().size() == 0 &&
         hasNoExtras(node);
}

bool isPlainLine(const Node& node) noexcept {
  return kindOf(node) == NodeKind::kLine && node->getChildren().size() == 1 &&
         isBareText(node->getChildren()[0]) && hasNoExtras(node);
}

std::u16string_view textOf(const Node& node) noexcept {
  return static_cast<const PlainTextNode::Impl*>(node.get())->getText();
}

}  // namespace tessera::formats
