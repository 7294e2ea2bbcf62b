#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "document/kdzero/TesseraDocument.hpp"

namespace tessera::session {

/// Top-level nodes of a snippet, without most nodes of plain code: where all lines of a part are
/// plain, the text of the snippet says what their nodes are.
///
/// The nodes of a line of 37 characters take 177 bytes.
class NodeParts {
 public:
  /// A part. Without a document, each of its lines has one node: a plain line with that text.
  struct Part {
    std::shared_ptr<const document::kdzero::TesseraDocument> document;
    std::uint64_t nodes = 0;
    /// Where its lines begin in the text of the snippet, in code units.
    std::size_t textBegin = 0;
  };

  /// Adds the nodes of `document`, which are those of the lines of `text`, joined by LF; `text`
  /// begins `textBegin` code units after the start of the snippet. Keeps the document only if it
  /// has something that the text does not tell, and chooses the next part's size accordingly.
  void add(std::shared_ptr<const document::kdzero::TesseraDocument> document, std::size_t textBegin,
           std::u16string_view text);

  /// How many lines the next part is to have at least.
  std::uint64_t nextSize() const noexcept { return size; }

  const std::vector<Part>& parts() const noexcept { return list; }
  /// The number of nodes in all parts.
  std::uint64_t nodeCount() const noexcept { return count; }
  /// Whether the text of the snippet is needed to know all nodes.
  bool needsText() const noexcept { return hasPlainParts; }

 private:
  // The nodes of so many ordinary lines fit in one chunk of a model's storage. Where no part is
  // plain, parts grow, so that less of their last chunks is unused.
  static constexpr std::uint64_t kSmallest = 256;
  static constexpr std::uint64_t kLargest = 64 * kSmallest;

  std::vector<Part> list;
  std::uint64_t size = kSmallest;
  std::uint64_t count = 0;
  bool hasPlainParts = false;
};

}  // namespace tessera::session
