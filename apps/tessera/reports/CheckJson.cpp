#include "tessera/reports/CheckJson.hpp"

#include <cstdint>
#include <string_view>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::reports {

using namespace check::catalogue;

void CheckJson::write(const CheckedFile& file) {
  json.beginObject();
  json.key("schemaVersion");
  json.number(std::uint64_t{1});
  json.key("file");
  json.text(std::string_view(file.path));
  json.key("diagnostics");
  json.beginArray();
  for (const Diagnostic& diagnostic : file.diagnostics) {
    writeDiagnostic(file, diagnostic);
    output.flushIfLarge();
  }
  json.endArray();
  json.endObject();
  output.text() += '\n';
  output.flush();
}

void CheckJson::writeDiagnostic(const CheckedFile& file, const Diagnostic& diagnostic) {
  const CatalogueEntry& entry = entryOf(diagnostic.kind);
  json.beginObject();
  json.key("id");
  json.text(entry.id);
  json.key("severity");
  json.text(std::string_view(entry.severity == Severity::kFailure ? "failure" : "warning"));
  writeSpan(file, diagnostic.span);
  json.key("message");
  json.text(std::string_view(diagnostic.message));
  json.key("notes");
  json.beginArray();
  for (const Note& note : diagnostic.notes) {
    json.beginObject();
    writeSpan(file, note.span);
    json.key("message");
    json.text(std::string_view(note.message));
    json.endObject();
  }
  json.endArray();
  writeFix(file, diagnostic);
  json.endObject();
}

void CheckJson::writeFix(const CheckedFile& file, const Diagnostic& diagnostic) {
  json.key("fix");
  if (!diagnostic.fix) return json.null();
  json.beginObject();
  json.key("description");
  json.text(std::string_view(diagnostic.fix->description));
  json.key("edits");
  json.beginArray();
  for (const Edit& edit : diagnostic.fix->edits) {
    json.beginObject();
    writeSpan(file, edit.span);
    json.key("text");
    json.text(std::string_view(edit.text));
    json.endObject();
  }
  json.endArray();
  json.endObject();
}

void CheckJson::writeSpan(const CheckedFile& file, const Span& span) {
  const auto columnOf = [&](const Position& position) {
    return file.lines.countCharactersBefore(position.line, position.unit) + 1;
  };
  json.key("line");
  json.number(span.begin.line);
  json.key("column");
  json.number(columnOf(span.begin));
  json.key("endLine");
  json.number(span.end.line);
  json.key("endColumn");
  json.number(columnOf(span.end));
}

}  // namespace tessera::reports
