#include "tessera/session/plainLine.hpp"

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"

namespace tessera::session {

using namespace document::kdzero;

namespace {

/// Returns whether the class of `node` is `Kind`. Comparing addresses is enough: no class is
/// derived from the two that are asked for.
template <typename Kind>
bool isOf(const Node& node) noexcept {
  return &node->getMetaClass() == &Kind::Impl::classOf();
}

bool hasNoExtras(const Node& node) noexcept {
  return node->getAnchorId().empty() && node->getParserFailures().empty() &&
         node->getContributorData().empty();
}

}  // namespace

bool isBareText(const Node& node) noexcept {
  return isOf<PlainTextNode>(node) && node->getChildren().empty() && hasNoExtras(node);
}

bool isPlainLine(const Node& node) noexcept {
  return isOf<LineNode>(node) && node->getChildren().size() == 1 &&
         isBareText(node->getChildren()[0]) && hasNoExtras(node);
}

std::u16string_view textOf(const Node& node) noexcept {
  return static_cast<const TextNode::Impl*>(node.get())->getText();
}

}  // namespace tessera::session
