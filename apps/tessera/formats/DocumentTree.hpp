#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "document/kdzero/Node.hpp"
#include "tessera/files/OutputText.hpp"
#include "tessera/formats/DocumentWriter.hpp"
#include "tessera/session/NodeCursor.hpp"

namespace tessera::formats {

/// Writes parsed files for people to read: one row per node, indented after its line's number.
///
/// Control characters of a file's text are escaped, so that a terminal shows them.
class DocumentTree final : public DocumentWriter {
 public:
  /// Borrows `output`.
  DocumentTree(files::OutputText& output, Records records) : output(output), records(records) {}

  void write(const FileResult& result) override;

 private:
  void writeLine(const session::LineTable::Line& line, session::NodeCursor& nodes,
                 const FileResult& result);
  void writeOutcome(const session::LineOutcome& outcome, std::string_view parser);
  void writeTree(const document::kdzero::Node& top);
  const document::kdzero::Node* writeNode(const document::kdzero::Node& node, std::size_t depth);
  void writeTask(const document::kdzero::Node& node, std::size_t depth);
  void writeDetails(const document::kdzero::Node& node, std::size_t depth);
  void beginRow(std::size_t depth);
  void row(std::size_t depth, std::string_view text);

  files::OutputText& output;
  Records records;
  // The number of the line until its first row is written, then 0.
  std::uint64_t lineNumber = 0;
};

}  // namespace tessera::formats
