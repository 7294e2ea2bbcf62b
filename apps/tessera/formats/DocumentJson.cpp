#include "tessera/formats/DocumentJson.hpp"

#include <cstdint>

namespace tessera::formats {

DocumentJson::DocumentJson(files::OutputFile& output, foundation::json::Form form, Records records)
    : output(output),
      json(output.text(), form),
      nodes(output, json, form),
      lines(output, json, form, records) {}

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
