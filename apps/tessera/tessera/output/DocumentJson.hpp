#pragma once

#include "foundation/json/Writer.hpp"
#include "tessera/output/DocumentWriter.hpp"
#include "tessera/output/LineJson.hpp"
#include "tessera/output/NodeJson.hpp"

namespace tessera::output {

/// Writes parsed files as JSON objects, one behind the other.
class DocumentJson final : public DocumentWriter {
 public:
  /// Borrows `file`.
  DocumentJson(OutputFile& file, foundation::json::Form form, Records showRecords);

  void write(const FileResult& result) override;

 private:
  OutputFile& output;
  foundation::json::Writer json;
  NodeJson nodes;
  LineJson lines;
};

}  // namespace tessera::output
