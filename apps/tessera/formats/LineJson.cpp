#include "tessera/formats/LineJson.hpp"

#include <charconv>
#include <iterator>
#include <limits>
#include <string_view>

#include "tessera/session/NodeCursor.hpp"
#include "tessera/session/ResultJson.hpp"

namespace tessera::formats {
namespace {

constexpr std::string_view kLinesKey = "lines";

void writeNumber(foundation::json::Writer& target, std::uint64_t number) {
  target.beginObject();
  target.key("line");
  target.number(number);
}

std::size_t digitCount(std::uint64_t number) {
  return std::to_string(number).size();
}

void appendDigits(std::string& text, std::uint64_t number) {
  char digits[std::numeric_limits<std::uint64_t>::digits10 + 1];
  text.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
}

}  // namespace

void LineJson::writeMember(const FileResult& result) {
  // Outcomes of this document may have the addresses of an earlier document's outcomes.
  pattern.outcome = nullptr;
  previous = nullptr;
  json.key(kLinesKey);
  json.beginArray();
  session::LineTable::Cursor cursor(result.parsed.lines);
  const std::uint64_t total = session::NodeCursor(result.parsed).count();
  while (cursor.advance()) {
    // Nearly every line has one node.
    const std::uint64_t number = cursor.line().number;
    if (number % progress::kStepsPerShow == 0) result.stage.show(number, total);
    writeLine(cursor.line(), result);
    output.flushIfLarge();
  }
  json.endArray();
}

void LineJson::writeLine(const Line& line, const FileResult& result) {
  const bool isRepeated = previous == &line.outcome && line.outcome.nodeCount == 1;
  previous = &line.outcome;
  if (!matchesPattern(line)) {
    if (!isRepeated) {
      writeNumber(json, line.number);
      writeThroughNodes(json, line, result);
      return writeRest(json, line);
    }
    makePattern(line, result);
  }
  appendPattern(line);
}

bool LineJson::matchesPattern(const Line& line) {
  if (pattern.outcome == nullptr) return false;
  if (pattern.outcome == &line.outcome) return true;
  // Two runs of similar lines may have other lines between them.
  if (!areAlike(*pattern.outcome, line.outcome)) return false;
  pattern.outcome = &line.outcome;
  return true;
}

void LineJson::makePattern(const Line& line, const FileResult& result) {
  std::string text;
  foundation::json::Writer writer(text, layout.form, layout.emptyMembers);
  writer.beginObject();
  writer.key(kLinesKey);
  writer.beginArray();
  // An element before this one, so that the writer puts a comma between them.
  writer.null();
  const std::size_t begin = text.size();
  writeNumber(writer, line.number);
  const std::size_t lineEnd = text.size();
  writeThroughNodes(writer, line, result);
  const std::size_t nodeEnd = text.size();
  writeRest(writer, line);
  const std::size_t lineBegin = lineEnd - digitCount(line.number);
  const std::size_t nodeBegin = nodeEnd - digitCount(line.firstNode);
  pattern = {&line.outcome, text.substr(begin, lineBegin - begin),
             text.substr(lineEnd, nodeBegin - lineEnd), text.substr(nodeEnd)};
}

void LineJson::appendPattern(const Line& line) {
  std::string& text = output.text();
  text += pattern.beforeLine;
  appendDigits(text, line.number);
  text += pattern.beforeNode;
  appendDigits(text, line.firstNode);
  text += pattern.afterNode;
}

void LineJson::writeThroughNodes(foundation::json::Writer& target, const Line& line,
                                 const FileResult& result) const {
  target.key("parser");
  target.text(std::string_view(result.parsers[line.outcome.parser].name));
  session::writeResultMembers(target, line.outcome.result);
  target.key("nodes");
  target.beginArray();
  for (std::uint64_t i = 0; i < line.outcome.nodeCount; ++i) target.number(line.firstNode + i);
}

void LineJson::writeRest(foundation::json::Writer& target, const Line& line) const {
  target.endArray();
  if (records == Records::kShown) session::writeLog(target, line.outcome.log);
  target.endObject();
}

}  // namespace tessera::formats
