#include "tessera/formats/LineJson.hpp"

#include <string_view>

#include "tessera/session/ResultJson.hpp"

namespace tessera::formats {
namespace {

constexpr std::string_view kKey = "lines";

void writeNumber(foundation::json::Writer& target, std::uint64_t number) {
  target.beginObject();
  target.key("line");
  target.number(number);
}

/// Adds one to the number that ends at `end` and has something before it. False when it would
/// need a digit more; its digits are then those of no number.
bool countOn(std::string& text, std::size_t end) {
  while (text[--end] == '9') text[end] = '0';
  const bool isDigit = text[end] >= '0' && text[end] < '9';
  if (isDigit) ++text[end];
  return isDigit;
}

}  // namespace

void LineJson::writeMember(const FileResult& result) {
  // Outcomes of another document may stand at the same places.
  pattern.outcome = nullptr;
  previous = nullptr;
  json.key(kKey);
  json.beginArray();
  session::LineTable::Cursor cursor(result.parsed.lines);
  while (cursor.advance()) {
    writeLine(cursor.line(), result);
    output.flushIfLarge();
  }
  json.endArray();
}

void LineJson::writeLine(const Line& line, const FileResult& result) {
  const bool isRepeated = previous == &line.outcome && line.outcome.nodeCount == 1;
  previous = &line.outcome;
  if (!fitPattern(line)) {
    if (!isRepeated) {
      writeNumber(json, line.number);
      writeThroughNodes(json, line, result);
      return writeRest(json, line);
    }
    makePattern(line, result);
  }
  output.text() += pattern.text;
}

/// Gives the pattern the numbers of `line` if it is one like `line`.
bool LineJson::fitPattern(const Line& line) {
  if (pattern.outcome == nullptr) return false;
  if (pattern.outcome != &line.outcome) {
    // Others may have come between two runs of lines alike.
    if (!areAlike(*pattern.outcome, line.outcome)) return false;
    pattern.outcome = &line.outcome;
  }
  const bool fits = countTo(pattern.line, line.number) && countTo(pattern.node, line.firstNode);
  if (!fits) pattern.outcome = nullptr;
  return fits;
}

bool LineJson::countTo(Number& number, std::uint64_t value) {
  while (number.value < value) {
    if (!countOn(pattern.text, number.end)) return false;
    ++number.value;
  }
  return number.value == value;
}

void LineJson::makePattern(const Line& line, const FileResult& result) {
  std::string& text = pattern.text;
  text.clear();
  foundation::json::Writer writer(text, form);
  writer.beginObject();
  writer.key(kKey);
  writer.beginArray();
  // In place of the line before.
  writer.null();
  const std::size_t begin = text.size();
  writeNumber(writer, line.number);
  pattern.line = {line.number, text.size() - begin};
  writeThroughNodes(writer, line, result);
  pattern.node = {line.firstNode, text.size() - begin};
  writeRest(writer, line);
  text.erase(0, begin);
  pattern.outcome = &line.outcome;
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
