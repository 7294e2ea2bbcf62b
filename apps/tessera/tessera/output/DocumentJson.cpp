#include "tessera/output/DocumentJson.hpp"

#include <cstdint>

#include "tessera/output/ResultJson.hpp"

namespace tessera::output {

DocumentJson::DocumentJson(OutputFile& file, foundation::json::Form form, Records showRecords)
    : output(file), json(file.text(), form), nodes(file, json), records(showRecords) {}

void DocumentJson::write(const FileResult& result) {
  json.beginObject();
  json.key("schemaVersion");
  json.number(std::uint64_t{1});
  json.key("file");
  json.text(std::string_view(result.file));
  json.key("nodes");
  nodes.writeNodes(result.parsed.document->getChildren());
  writeLines(result);
  json.endObject();
  output.text() += '\n';
}

void DocumentJson::writeLines(const FileResult& result) {
  json.key("lines");
  json.beginArray();
  session::LineTable::Cursor cursor(result.parsed.lines);
  while (cursor.advance()) {
    writeLine(cursor.line(), result);
    output.flushIfLarge();
  }
  json.endArray();
}

void DocumentJson::writeLine(const session::LineTable::Line& line, const FileResult& result) {
  json.beginObject();
  json.key("line");
  json.number(line.number);
  json.key("parser");
  json.text(std::string_view(result.parsers[line.outcome.parser].name));
  writeResultMembers(json, line.outcome.result);
  json.key("nodes");
  json.beginArray();
  for (std::uint64_t i = 0; i < line.outcome.nodeCount; ++i) json.number(line.firstNode + i);
  json.endArray();
  if (records == Records::kShown) writeLog(json, line.outcome.log);
  json.endObject();
}

}  // namespace tessera::output
