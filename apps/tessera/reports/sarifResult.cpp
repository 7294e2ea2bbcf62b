#include "tessera/reports/sarifResult.hpp"

#include <algorithm>
#include <cstdint>

#include "foundation/json/Writer.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::reports {

using namespace check::catalogue;
using foundation::json::Form;
using foundation::json::Writer;

namespace {

// Services show this many locations of a result.
constexpr std::size_t kMostRelatedLocations = 100;

/// Escapes what has a meaning in the text of a link.
std::string linkText(std::string_view text) {
  std::string escaped;
  for (const char character : text) {
    if (character == '[' || character == ']' || character == '\\') escaped += '\\';
    escaped += character;
  }
  return escaped;
}

/// Writes the parts of one result.
class ResultWriter {
 public:
  ResultWriter(std::string& output, const Diagnostic& diagnostic, const std::string& uri)
      : json(output, Form::kCompact), diagnostic(diagnostic), uri(uri) {}

  void write(const std::string& fingerprint) {
    const CatalogueEntry& entry = entryOf(diagnostic.kind);
    json.beginObject();
    text("ruleId", entry.id);
    number("ruleIndex", static_cast<std::uint64_t>(diagnostic.kind));
    text("level", sarifLevel(entry.severity));
    writeMessage("message", messageText());
    writeLocations();
    json.key("partialFingerprints");
    json.beginObject();
    text("primaryLocationLineHash", fingerprint);
    json.endObject();
    if (diagnostic.fix) writeFix(*diagnostic.fix);
    json.endObject();
  }

 private:
  std::size_t relatedCount() const {
    return std::min(diagnostic.notes.size(), kMostRelatedLocations);
  }

  /// Returns the message with a link to each related location: services show only those that the
  /// message links to.
  std::string messageText() const {
    std::string message = diagnostic.message;
    for (std::size_t i = 0; i < relatedCount(); ++i) {
      message += "\n[" + linkText(diagnostic.notes[i].message) + "](" + std::to_string(i + 1) + ")";
    }
    const std::size_t others = diagnostic.notes.size() - relatedCount();
    if (others != 0) message += "\n(and " + std::to_string(others) + " more)";
    return message;
  }

  void writeLocations() {
    json.key("locations");
    json.beginArray();
    json.beginObject();
    writePlace(diagnostic.span);
    json.endObject();
    json.endArray();
    if (relatedCount() == 0) return;
    json.key("relatedLocations");
    json.beginArray();
    for (std::size_t i = 0; i < relatedCount(); ++i) {
      json.beginObject();
      number("id", i + 1);
      writePlace(diagnostic.notes[i].span);
      writeMessage("message", diagnostic.notes[i].message);
      json.endObject();
    }
    json.endArray();
  }

  void writeFix(const Fix& fix) {
    json.key("fixes");
    json.beginArray();
    json.beginObject();
    writeMessage("description", fix.description);
    json.key("artifactChanges");
    json.beginArray();
    json.beginObject();
    writeArtifact();
    json.key("replacements");
    json.beginArray();
    for (const Edit& edit : fix.edits) writeReplacement(edit);
    json.endArray();
    json.endObject();
    json.endArray();
    json.endObject();
    json.endArray();
  }

  void writeReplacement(const Edit& edit) {
    json.beginObject();
    writeRegion("deletedRegion", edit.span);
    if (!edit.text.empty()) writeMessage("insertedContent", edit.text);
    json.endObject();
  }

  void writePlace(const Span& span) {
    json.key("physicalLocation");
    json.beginObject();
    writeArtifact();
    writeRegion("region", span);
    json.endObject();
  }

  void writeArtifact() {
    json.key("artifactLocation");
    json.beginObject();
    text("uri", uri);
    json.endObject();
  }

  void writeRegion(std::string_view key, const Span& span) {
    json.key(key);
    json.beginObject();
    number("startLine", span.begin.line);
    number("startColumn", span.begin.unit + 1);
    number("endLine", span.end.line);
    number("endColumn", span.end.unit + 1);
    json.endObject();
  }

  void writeMessage(std::string_view key, std::string_view message) {
    json.key(key);
    json.beginObject();
    text("text", message);
    json.endObject();
  }

  void text(std::string_view key, std::string_view value) {
    json.key(key);
    json.text(value);
  }

  void number(std::string_view key, std::uint64_t value) {
    json.key(key);
    json.number(value);
  }

  Writer json;
  const Diagnostic& diagnostic;
  const std::string& uri;
};

}  // namespace

std::string_view sarifLevel(Severity severity) noexcept {
  return severity == Severity::kFailure ? "error" : "warning";
}

std::string sarifResult(const Diagnostic& diagnostic, const std::string& uri,
                        const std::string& fingerprint) {
  std::string result;
  ResultWriter(result, diagnostic, uri).write(fingerprint);
  return result;
}

}  // namespace tessera::reports
