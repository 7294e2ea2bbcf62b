#pragma once

#include <cstddef>
#include <cstdint>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "tessera/session/SnippetSession.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::session {

/// Walks the top-level nodes of a parsed snippet from the first to the last.
class NodeCursor {
 public:
  /// Borrows `parsed`.
  explicit NodeCursor(const ParsedSnippet& parsed);

  /// Returns how many nodes there are.
  std::uint64_t count() const noexcept;

  /// Moves to the next node. Returns whether there is one.
  bool advance();
  /// Moves forward to the node numbered `index`, from 0, and returns it. It is among the nodes.
  const document::kdzero::Node& at(std::uint64_t index);

  /// The current node; valid until the next call.
  const document::kdzero::Node& node() const noexcept { return *current; }

 private:
  bool beginPart();

  const ParsedSnippet& parsed;
  // Parts that were begun; the nodes of the last document follow all parts.
  std::size_t begun = 0;
  const document::kdzero::TesseraDocument* document = nullptr;
  // The current part: how many nodes it has, and how many were passed.
  std::uint64_t inPart = 0;
  std::uint64_t passed = 0;
  source::LineCursor lines{{}, false};
  // The number of the next node.
  std::uint64_t number = 0;
  // Replaces the node of a line of plain code: its text is set for each line.
  document::kdzero::PlainTextNode plainText;
  document::kdzero::Node plainLine;
  const document::kdzero::Node* current = nullptr;
};

}  // namespace tessera::session
