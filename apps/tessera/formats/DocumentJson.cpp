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
  // The nodes take twice as long as the lines.
  FileResult linesResult = result;
  linesResult.stage.begin += (result.stage.end - result.stage.begin) / 3 * 2;
  nodes.writeMember(result.parsed,
                    {result.stage.progress, result.stage.begin, linesResult.stage.begin});
  lines.writeMember(linesResult);
  json.endObject();
  output.text() += '\n';
}

}  // namespace tessera::formats
