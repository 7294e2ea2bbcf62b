#include "tessera/output/NodeKind.hpp"

#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"

namespace tessera::output {

using namespace document::kdzero;

NodeKind kindOf(const Node& node) noexcept {
  if (node->isKindOf(PlainTextNode::Impl::classOf())) return NodeKind::kPlainText;
  if (node->isKindOf(LiveAppLineNode::Impl::classOf())) return NodeKind::kTaskLine;
  if (node->isKindOf(LiveAppIntegratedInlineNode::Impl::classOf())) return NodeKind::kTask;
  return NodeKind::kLine;
}

std::string_view nameOf(NodeKind kind) noexcept {
  constexpr std::string_view kNames[] = {"LineNode", "PlainTextNode", "LiveAppLineNode",
                                         "LiveAppIntegratedInlineNode"};
  return kNames[static_cast<std::size_t>(kind)];
}

}  // namespace tessera::output
