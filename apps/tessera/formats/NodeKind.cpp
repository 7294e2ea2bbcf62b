#include "tessera/formats/NodeKind.hpp"

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "tessera/pieces/ControlNode.hpp"
#include "tessera/pieces/OutputNode.hpp"

namespace tessera::formats {

using namespace document::kdzero;
using pieces::ControlNode;
using pieces::OutputNode;

NodeKind kindOf(const Node& node) noexcept {
  // Comparing addresses is enough: no class is derived from these.
  const auto* const nodeClass = &node->getMetaClass();
  if (nodeClass == &LineNode::Impl::classOf()) return NodeKind::kLine;
  if (nodeClass == &PlainTextNode::Impl::classOf()) return NodeKind::kPlainText;
  if (nodeClass == &LiveAppLineNode::Impl::classOf()) return NodeKind::kTaskLine;
  if (nodeClass == &LiveAppIntegratedInlineNode::Impl::classOf()) return NodeKind::kTask;
  if (nodeClass == &OutputNode::Impl::classOf()) return NodeKind::kPiece;
  if (nodeClass == &ControlNode::Impl::classOf()) return NodeKind::kPiece;
  return NodeKind::kOther;
}

bool hasText(const Node& node) noexcept {
  return node->isKindOf(TextNode::Impl::classOf());
}

}  // namespace tessera::formats
