#include "tessera/reports/sarifResult.hpp"

#include <algorithm>
#include <cstdint>

#include "foundation/json/Writer.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/reports/artifactUri.hpp"
#include "tessera/reports/writeMember.hpp"

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
    writeMember(json, "ruleId", entry.id);
    writeMember(json, "ruleIndex", static_cast<std::uint64_t>(diagnostic.kind));
    writeMember(json, "level", sarifLevel(entry.severity));
    writeMessage(json, "message", messageText());
    writeLocations();
    json.key("partialFingerprints");
    json.beginObject();
    writeMember(json, "primaryLocationLineHash", fingerprint);
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
    std::string message = withoutLinks(diagnostic.message);
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
    writePlace(diagnostic.span, uri);
    json.endObject();
    json.endArray();
    if (relatedCount() == 0) return;
    json.key("relatedLocations");
    json.beginArray();
    for (std::size_t i = 0; i < relatedCount(); ++i) {
      json.beginObject();
      writeMember(json, "id", std::uint64_t{i + 1});
      const Note& note = diagnostic.notes[i];
      writePlace(note.span, note.otherFile == nullptr ? uri : artifactUri(note.otherFile->path));
      writeMessage(json, "message", withoutLinks(note.message));
      json.endObject();
    }
    json.endArray();
  }

  void writeFix(const Fix& fix) {
    json.key("fixes");
    json.beginArray();
    json.beginObject();
    writeMessage(json, "description", withoutLinks(fix.description));
    json.key("artifactChanges");
    json.beginArray();
    json.beginObject();
    writeArtifact(uri);
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
    if (!edit.text.empty()) writeMessage(json, "insertedContent", edit.text);
    json.endObject();
  }

  void writePlace(const Span& span, const std::string& artifact) {
    json.key("physicalLocation");
    json.beginObject();
    writeArtifact(artifact);
    writeRegion("region", span);
    json.endObject();
  }

  void writeArtifact(const std::string& artifact) {
    json.key("artifactLocation");
    json.beginObject();
    writeMember(json, "uri", artifact);
    json.endObject();
  }

  void writeRegion(std::string_view key, const Span& span) {
    json.key(key);
    json.beginObject();
    writeMember(json, "startLine", span.begin.line);
    writeMember(json, "startColumn", span.begin.unit + 1);
    writeMember(json, "endLine", span.end.line);
    writeMember(json, "endColumn", span.end.unit + 1);
    json.endObject();
  }

  Writer json;
  const Diagnostic& diagnostic;
  const std::string& uri;
};

}  // namespace

std::string withoutLinks(std::string_view text) {
  constexpr std::string_view kMiddle = "](";
  std::string result;
  for (auto at = text.find(kMiddle); at != text.npos; at = text.find(kMiddle)) {
    result.append(text.substr(0, at)).append("\\](");
    text.remove_prefix(at + kMiddle.size());
  }
  return result.append(text);
}

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
