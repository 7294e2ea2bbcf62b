#include "tessera/reports/TextReport.hpp"

#include <string>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/diagnostics/terminalText.hpp"

namespace tessera::reports {

using namespace check::catalogue;

namespace {

std::string placeOf(const std::string& path, const CheckedFile& file, const Position& position) {
  const auto before = file.lines.countCharactersBefore(position.line, position.unit);
  return path + ':' + std::to_string(position.line) + ':' + std::to_string(before + 1) + ": ";
}

}  // namespace

void TextReport::write(const CheckedFile& file) {
  const std::string path = diagnostics::terminalText(file.path);
  for (const Diagnostic& diagnostic : file.diagnostics) {
    const CatalogueEntry& entry = entryOf(diagnostic.kind);
    std::string& text = output.text();
    text += placeOf(path, file, diagnostic.span.begin);
    text += entry.severity == Severity::kFailure ? "failure: " : "warning: ";
    text += diagnostic.message + " [" + std::string(entry.id) + "]\n";
    for (const Note& note : diagnostic.notes) {
      text += placeOf(path, file, note.span.begin) + "note: " + note.message + '\n';
    }
    output.flushIfLarge();
  }
  output.flush();
}

}  // namespace tessera::reports
