#include "tessera/session/NodeParts.hpp"

#include <algorithm>
#include <utility>

#include "tessera/session/plainLine.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::session {

using document::kdzero::Node;
using document::kdzero::TesseraDocument;

namespace {

bool areAllPlain(const TesseraDocument& document, std::u16string_view text) {
  source::LineCursor lines(text, true);
  for (const Node& node : document.getChildren()) {
    const auto line = lines.next();
    if (!line || !isPlainLine(node) || textOf(node->getChildren()[0]) != *line) return false;
  }
  return !lines.next();
}

}  // namespace

void NodeParts::add(std::shared_ptr<const TesseraDocument> document, std::size_t textBegin,
                    std::u16string_view text) {
  const std::uint64_t nodes = document->getNumberOfChildren();
  count += nodes;
  if (!areAllPlain(*document, text)) {
    list.push_back({std::move(document), nodes, textBegin});
    size = std::min(2 * size, kLargest);
    return;
  }
  size = kSmallest;
  hasPlainParts = true;
  if (!list.empty() && list.back().document == nullptr) {
    list.back().nodes += nodes;
  } else {
    list.push_back({nullptr, nodes, textBegin});
  }
}

}  // namespace tessera::session
