#pragma once

#include "foundation/json/Writer.hpp"
#include "tessera/formats/DocumentWriter.hpp"
#include "tessera/formats/LineJson.hpp"
#include "tessera/formats/NodeJson.hpp"

namespace tessera::formats {

/// Writes parsed files as JSON objects, one after the other.
class DocumentJson final : public DocumentWriter {
 public:
  /// Borrows `output`.
  DocumentJson(files::OutputFile& output, foundation::json::Form form, Records records);

  void write(const FileResult& result) override;

 private:
  files::OutputFile& output;
  foundation::json::Writer json;
  NodeJson nodes;
  LineJson lines;
};

}  // namespace tessera::formats
