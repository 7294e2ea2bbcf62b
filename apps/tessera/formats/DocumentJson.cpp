#include "tessera/formats/DocumentJson.hpp"

#include <cstdint>

namespace tessera::formats {

DocumentJson::DocumentJson(files::OutputFile& file, foundation::json::Form form,
                           Records showRecords)
    : output(file),
      json(file.text(), form),
      nodes(file, json, form),
      lines(file, json, form, showRecords) {}

void DocumentJson::write(const FileResult& result) {
  json.beginObject();
  json.key("schemaVersion");
  json.number(std::uint64_t{1});
  json.key("file");
  json.text(std::string_view(result.file));
  nodes.writeMember(result.parsed.document->getChildren());
  lines.writeMember(result);
  json.endObject();
  output.text() += '\n';
}

}  // namespace tessera::formats
