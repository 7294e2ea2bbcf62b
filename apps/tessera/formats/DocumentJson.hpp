#pragma once

#include "foundation/json/Writer.hpp"
#include "tessera/formats/DocumentWriter.hpp"
#include "tessera/formats/JsonLayout.hpp"
#include "tessera/formats/LineJson.hpp"
#include "tessera/formats/NodeJson.hpp"

namespace tessera::formats {

/// Writes parsed files as JSON objects, one after the other.
class DocumentJson final : public DocumentWriter {
 public:
  /// Borrows `output`.
  DocumentJson(files::OutputText& output, JsonLayout layout, Records records);

  void write(const FileResult& result) override;

 private:
  files::OutputText& output;
  foundation::json::Writer json;
  NodeJson nodes;
  LineJson lines;
};

}  // namespace tessera::formats
