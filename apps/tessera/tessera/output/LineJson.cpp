#include "tessera/output/LineJson.hpp"

#include <cstdint>
#include <string_view>

#include "foundation/json/write.hpp"
#include "tessera/output/ResultJson.hpp"

namespace tessera::output {

constexpr std::string_view kKey = "lines";

void LineJson::writeMember(const FileResult& result) {
  // Outcomes of another document may stand at the same places.
  pattern = {};
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
  if (!isRepeated) return writeWhole(json, line, result);
  if (pattern.outcome != &line.outcome) pattern = makePattern(line, result);
  writePattern(line);
}

void LineJson::writeWhole(foundation::json::Writer& target, const Line& line,
                          const FileResult& result) const {
  target.beginObject();
  target.key("line");
  target.number(line.number);
  target.key("parser");
  target.text(std::string_view(result.parsers[line.outcome.parser].name));
  writeResultMembers(target, line.outcome.result);
  target.key("nodes");
  target.beginArray();
  for (std::uint64_t i = 0; i < line.outcome.nodeCount; ++i) target.number(line.firstNode + i);
  target.endArray();
  if (records == Records::kShown) writeLog(target, line.outcome.log);
  target.endObject();
}

void LineJson::writePattern(const Line& line) {
  json.raw(pattern.beforeNumber);
  foundation::json::appendInteger(output.text(), line.number);
  output.text() += pattern.beforeNode;
  foundation::json::appendInteger(output.text(), line.firstNode);
  output.text() += pattern.behindNode;
}

LineJson::Pattern LineJson::makePattern(const Line& line, const FileResult& result) const {
  std::string text;
  foundation::json::Writer writer(text, form);
  writer.beginObject();
  writer.key(kKey);
  writer.beginArray();
  writeWhole(writer, line, result);
  text.erase(0, text.find('{', 1));
  const std::string number = std::to_string(line.number);
  const std::string node = std::to_string(line.firstNode);
  // The number is the first one of the line; the node's index follows its key.
  const std::size_t numberAt = text.find(number);
  const std::size_t nodeAt = text.find(node, text.rfind("\"nodes\""));
  return {&line.outcome, text.substr(0, numberAt),
          text.substr(numberAt + number.size(), nodeAt - numberAt - number.size()),
          text.substr(nodeAt + node.size())};
}

}  // namespace tessera::output
