#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>

#include "document/kdzero/Node.hpp"
#include "tessera/files/OutputText.hpp"
#include "tessera/formats/DocumentWriter.hpp"
#include "tessera/pieces/PieceNode.hpp"
#include "tessera/session/NodeCursor.hpp"
#include "tessera/tree/LineRows.hpp"
#include "tessera/tree/NodeRows.hpp"
#include "tessera/tree/TreeRows.hpp"
#include "tessera/tree/TreeStyle.hpp"
#include "tessera/tree/describe.hpp"

namespace tessera::tree {

/// Writes parsed files for people to read: the lines with their numbers, brackets beside tasks, and
/// below each line what else its node has.
///
/// The lines of the file are in rows with a number and rows that continue them, and in no others.
/// Characters that a terminal would not show are written as numbers. With records, everything about
/// a line is shown, what the parser returned included.
class DocumentTree final : public formats::DocumentWriter {
 public:
  /// Borrows `output`.
  DocumentTree(files::OutputText& output, const TreeStyle& style, formats::Records records);

  void write(const formats::FileResult& result) override;

 private:
  using Line = session::LineTable::Line;

  /// The label of a marker, and its first piece.
  struct LabeledPiece {
    const document::kdzero::Node* node;
    std::size_t label;
  };

  void writeLine(const Line& written, session::NodeCursor& nodes);
  void writeNodes(const Line& written, session::NodeCursor& nodes, bool wasInTask);
  void writeHeader(const document::kdzero::Node& header);
  void writeText(const document::kdzero::Node& lineNode);
  void addChild(const document::kdzero::Node& child);
  std::size_t labelOf(const document::kdzero::Node& child);
  void writeSummary(std::size_t failureCount);
  void writeOutcome(const session::LineOutcome& outcome, std::string_view parser);

  files::OutputText& output;
  formats::Records records;
  Detail detail;
  TreeRows rows;
  NodeRows nodeRows;
  // The text of the current line; pieces by their ranges.
  LabeledLine line;
  std::map<pieces::PieceNode::Impl::Range, LabeledPiece> labeledPieces;
  // Whether a task is open after the line that was written last.
  bool isInTask = false;
};

}  // namespace tessera::tree
