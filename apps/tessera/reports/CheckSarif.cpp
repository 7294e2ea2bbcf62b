#include "tessera/reports/CheckSarif.hpp"

#include <cstdint>
#include <string_view>
#include <utility>

#include "foundation/json/Writer.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/reports/LineFingerprints.hpp"
#include "tessera/reports/artifactUri.hpp"
#include "tessera/reports/embeddable.hpp"
#include "tessera/reports/sarifResult.hpp"
#include "tessera/reports/sarifRules.hpp"
#include "tessera/reports/writeMember.hpp"

namespace tessera::reports {

using namespace check::catalogue;
using foundation::json::Form;
using foundation::json::Writer;

namespace {

// Services reject a run with more.
constexpr std::size_t kMostResults = 25000;
// Files that could not be checked: after so many they are only counted.
constexpr std::size_t kMostProblems = 1000;

void writePlace(Writer& json, const diagnostics::Problem& problem) {
  json.key("locations");
  json.beginArray();
  json.beginObject();
  json.key("physicalLocation");
  json.beginObject();
  json.key("artifactLocation");
  json.beginObject();
  writeMember(json, "uri", artifactUri(problem.file));
  json.endObject();
  if (problem.place) {
    json.key("region");
    json.beginObject();
    writeMember(json, "startLine", problem.place->line);
    json.endObject();
  }
  json.endObject();
  json.endObject();
  json.endArray();
}

/// Returns a problem as a SARIF notification, compact JSON. It has no column, because that of a
/// problem counts characters and not code units.
std::string notificationOf(const diagnostics::Problem& problem) {
  std::string notification;
  Writer json(notification, Form::kCompact);
  json.beginObject();
  writeMember(json, "level", "error");
  const std::string what = diagnostics::terminalText(problem.what);
  const std::string remedy = diagnostics::terminalText(problem.remedy);
  writeMessage(json, "message", withoutLinks(remedy.empty() ? what : what + "; " + remedy));
  writePlace(json, problem);
  json.endObject();
  return embeddable(notification);
}

/// Returns a notification about what the log does not have.
std::string warningOf(const std::string& message) {
  std::string notification;
  Writer json(notification, Form::kCompact);
  json.beginObject();
  writeMember(json, "level", "warning");
  writeMessage(json, "message", message);
  json.endObject();
  return notification;
}

void writeTool(Writer& json) {
  std::string rules;
  Writer ruleWriter(rules, Form::kCompact);
  writeSarifRules(ruleWriter);
  json.key("tool");
  json.beginObject();
  json.key("driver");
  json.beginObject();
  writeMember(json, "name", "tessera");
  writeMember(json, "semanticVersion", TESSERA_VERSION);
  json.key("rules");
  json.raw(embeddable(rules));
  json.endObject();
  json.endObject();
}

void writeInvocation(Writer& json, bool isSuccessful,
                     const std::vector<std::string>& notifications) {
  json.key("invocations");
  json.beginArray();
  json.beginObject();
  json.key("executionSuccessful");
  json.boolean(isSuccessful);
  json.key("toolExecutionNotifications");
  json.beginArray();
  for (const std::string& notification : notifications) json.raw(notification);
  json.endArray();
  json.endObject();
  json.endArray();
}

}  // namespace

void CheckSarif::write(const CheckedFile& file) {
  const std::string uri = artifactUri(file.path);
  LineFingerprints fingerprints;
  for (const Diagnostic& diagnostic : file.diagnostics) {
    const CatalogueEntry& entry = entryOf(diagnostic.kind);
    const auto line = file.lines.line(diagnostic.span.begin.line);
    add(sarifResult(diagnostic, uri, fingerprints.next(entry.id, line)), entry.severity);
  }
}

void CheckSarif::add(const std::string& result, Severity severity) {
  if (resultCount == kMostResults) {
    ++leftOut;
    if (severity != Severity::kFailure || warnings.empty()) return;
    results[warnings.back()].clear();
    warnings.pop_back();
    --resultCount;
  }
  if (severity == Severity::kWarning) warnings.push_back(results.size());
  results.push_back(embeddable(result));
  ++resultCount;
}

void CheckSarif::addProblem(const diagnostics::Problem& problem) {
  if (++problemCount <= kMostProblems) notifications.push_back(notificationOf(problem));
}

void CheckSarif::finish() {
  if (problemCount > kMostProblems) {
    notifications.push_back(
        warningOf(std::to_string(problemCount - kMostProblems) +
                  " more files could not be checked; they are on standard error"));
  }
  if (leftOut != 0) {
    notifications.push_back(
        warningOf(std::to_string(leftOut) +
                  " results are left out, because a run has at most 25,000; check fewer files at "
                  "a time"));
  }
  Writer json(output.text(), Form::kCompact);
  json.beginObject();
  writeMember(json, "$schema", "https://json.schemastore.org/sarif-2.1.0.json");
  writeMember(json, "version", "2.1.0");
  json.key("runs");
  json.beginArray();
  json.beginObject();
  writeTool(json);
  writeInvocation(json, problemCount == 0, notifications);
  writeMember(json, "columnKind", "utf16CodeUnits");
  json.key("results");
  json.beginArray();
  for (const std::string& result : results) {
    if (result.empty()) continue;
    json.raw(result);
    output.flushIfLarge();
  }
  json.endArray();
  json.endObject();
  json.endArray();
  json.endObject();
  output.text() += '\n';
  output.flush();
}

}  // namespace tessera::reports
