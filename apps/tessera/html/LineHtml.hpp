#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "document/kdzero/Node.hpp"
#include "tessera/html/HtmlText.hpp"
#include "tessera/html/PieceMarkers.hpp"
#include "tessera/pieces/PieceNode.hpp"

namespace tessera::html {

/// Writes the nodes of a line: the text with its pieces in their place, what was said about them
/// after the text, and data of contributors below it.
class LineHtml {
 public:
  /// Starts the line `number` of the file numbered `file`.
  void begin(std::uint64_t file, std::uint64_t number);

  /// Adds `top` and everything below it. A loop: nodes may nest as deep as memory allows.
  void add(const document::kdzero::Node& top);

  /// Adds the data of `node` itself.
  void addData(const document::kdzero::Node& node);

  /// Adds the records that the parsers emitted.
  void addLog(const std::vector<std::string>& log);

  /// Appends what was added.
  void write(std::string& output) const;

  /// How many rows the line takes about, at least 1.
  std::size_t rows() const noexcept { return rowCount; }

 private:
  void addNode(const document::kdzero::Node& node);
  void addPiece(const document::kdzero::Node& node);
  void describePiece(const pieces::PieceNode::Impl& piece, bool isControl);
  void addOther(const document::kdzero::Node& node);

  std::uint64_t file = 0;
  std::uint64_t number = 0;
  std::size_t rowCount = 1;
  std::string text;
  std::string labels;
  std::string below;
  PieceMarkers described;
};

/// Appends a link to line `number` of the file numbered `file`, whose text is the anchor there.
void addAnchor(HtmlText& html, std::uint64_t file, std::uint64_t number, std::u16string_view id);

}  // namespace tessera::html
