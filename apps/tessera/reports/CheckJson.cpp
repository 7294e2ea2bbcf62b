#include "tessera/reports/CheckJson.hpp"

#include <cstdint>
#include <string_view>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/catalogue/describeEntry.hpp"
#include "tessera/formats/DocumentRecord.hpp"
#include "tessera/reports/placeOf.hpp"
#include "tessera/reports/writeMember.hpp"

namespace tessera::reports {

using namespace check::catalogue;

void CheckJson::write(const CheckedFile& file) {
  json.beginObject();
  formats::writeRecordHead(json, file.path);
  json.key("diagnostics");
  json.beginArray();
  for (const Diagnostic& diagnostic : file.diagnostics) {
    writeDiagnostic(file, diagnostic);
    output.flushIfLarge();
  }
  json.endArray();
  json.endObject();
  output.text() += '\n';
  output.flushIfLarge();
}

void CheckJson::writeDiagnostic(const CheckedFile& file, const Diagnostic& diagnostic) {
  const CatalogueEntry& entry = entryOf(diagnostic.kind);
  json.beginObject();
  writeMember(json, "id", entry.id);
  writeMember(json, "severity", nameOf(entry.severity));
  writeSpan(file, diagnostic.span);
  writeMember(json, "message", std::string_view(diagnostic.message));
  json.key("notes");
  json.beginArray();
  for (const Note& note : diagnostic.notes) writeNote(file, diagnostic, note);
  json.endArray();
  writeFix(file, diagnostic);
  json.endObject();
}

void CheckJson::writeNote(const CheckedFile& file, const Diagnostic& diagnostic, const Note& note) {
  json.beginObject();
  writeSpan(file, note.otherFile == nullptr ? note.span : diagnostic.span);
  std::string message = note.message;
  // A note has no member for a file.
  if (note.otherFile != nullptr) message += " is at " + placeOf(*note.otherFile, note.span.begin);
  writeMember(json, "message", std::string_view(message));
  json.endObject();
}

void CheckJson::writeFix(const CheckedFile& file, const Diagnostic& diagnostic) {
  json.key("fix");
  if (!diagnostic.fix) return json.null();
  json.beginObject();
  writeMember(json, "description", std::string_view(diagnostic.fix->description));
  json.key("edits");
  json.beginArray();
  for (const Edit& edit : diagnostic.fix->edits) {
    json.beginObject();
    writeSpan(file, edit.span);
    writeMember(json, "text", std::string_view(edit.text));
    json.endObject();
  }
  json.endArray();
  json.endObject();
}

void CheckJson::writeSpan(const CheckedFile& file, const Span& span) {
  const auto columnOf = [&](const Position& position) {
    return file.lines.countCharactersBefore(position.line, position.unit) + 1;
  };
  writeMember(json, "line", span.begin.line);
  writeMember(json, "column", columnOf(span.begin));
  writeMember(json, "endLine", span.end.line);
  writeMember(json, "endColumn", columnOf(span.end));
}

}  // namespace tessera::reports
