#include "tessera/formats/DocumentJson.hpp"

#include "tessera/formats/DocumentRecord.hpp"

namespace tessera::formats {

DocumentJson::DocumentJson(files::OutputText& output, JsonLayout layout, Records records)
    : output(output),
      json(output.text(), layout.form, layout.emptyMembers),
      nodes(output, json, layout),
      lines(output, json, layout, records) {}

void DocumentJson::write(const FileResult& result) {
  json.beginObject();
  writeRecordHead(json, result.file);
  nodes.writeMember(result.parsed.document->getChildren());
  lines.writeMember(result);
  json.endObject();
  output.text() += '\n';
}

}  // namespace tessera::formats
