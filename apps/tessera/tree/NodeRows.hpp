#pragma once

#include <cstddef>
#include <string_view>
#include <utility>

#include "document/kdzero/Node.hpp"
#include "tessera/tree/TreeRows.hpp"
#include "tessera/tree/describe.hpp"

namespace tessera::tree {

/// Writes what nodes are and have, as notes.
class NodeRows {
 public:
  /// Borrows `rows`.
  NodeRows(TreeRows& rows, Detail detail) : rows(rows), detail(detail) {}

  /// Writes the nodes [begin, end) with everything below them. A loop: nodes may nest as deep as
  /// memory allows.
  void appendTrees(const document::kdzero::Node* begin, const document::kdzero::Node* end,
                   std::size_t indent);
  /// Writes the children of `node` likewise.
  void appendChildren(const document::kdzero::Node& node, std::size_t indent);
  /// Writes the anchor, the contributor data and the failures of `node`.
  void appendExtras(const document::kdzero::Node& node, std::size_t indent);

  /// Returns how many failures were written since the last call.
  std::size_t takeFailureCount() noexcept { return std::exchange(failureCount, 0); }

 private:
  void appendNode(const document::kdzero::Node& node, std::size_t indent);
  void appendTask(const document::kdzero::Node& node, std::size_t indent);

  TreeRows& rows;
  Detail detail;
  std::size_t failureCount = 0;
};

/// Returns the colour of what is shown about `node`.
std::string_view colorOf(const document::kdzero::Node& node);

}  // namespace tessera::tree
