#pragma once

#include <string>
#include <vector>

#include "foundation/json/Writer.hpp"
#include "tessera/output/DocumentWriter.hpp"
#include "tessera/output/NodeJson.hpp"

namespace tessera::output {

/// Writes parsed files as JSON objects, one behind the other.
class DocumentJson final : public DocumentWriter {
 public:
  /// Borrows `file`.
  DocumentJson(OutputFile& file, foundation::json::Form form, Records showRecords);

  void write(const FileResult& result) override;

 private:
  void writeLines(const FileResult& result);
  void writeLine(const session::LineTable::Line& line, const FileResult& result);

  OutputFile& output;
  foundation::json::Writer json;
  NodeJson nodes;
  Records records;
};

}  // namespace tessera::output
