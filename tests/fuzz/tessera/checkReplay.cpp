#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "apps/tessera/support/WrittenText.hpp"
#include "fl/i18n/ustring.hpp"
#include "foundation/json/Writer.hpp"
#include "fuzz/Choices.hpp"
#include "fuzz/readJson.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/tessera/Workbench.hpp"
#include "tessera/formats/NodeJson.hpp"
#include "tessera/replay/CommandReader.hpp"
#include "tessera/replay/Replay.hpp"
#include "tessera/session/FileParser.hpp"
#include "tessera/session/Recording.hpp"
#include "tessera/source/SourceText.hpp"

namespace quenlith::fuzz {

using tessera::replay::CommandError;

namespace {

bool isBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r") == line.npos;
}

// Runs commands as `tessera replay` does, and returns the answers. The run ends at a line that is
// not a command.
std::string replay(const hostile::Host& host, std::string_view commands) {
  WrittenText answers;
  host.appendix().replace({});
  tessera::replay::Replay replay(host.makeParsers(), host.appendix(), answers);
  std::size_t answered = 0;
  while (!commands.empty()) {
    const std::string_view line = commands.substr(0, commands.find('\n'));
    commands.remove_prefix(std::min(line.size() + 1, commands.size()));
    if (isBlank(line)) continue;
    const auto text = fl::i18n::utf8_to_ustring(line);
    try {
      replay.run(tessera::replay::CommandReader(text).read());
      answered = answers.text().size();
    } catch (const CommandError& error) {
      require(error.column >= 1 && error.column <= text.size() + 1, "an error is in its line");
      require(!error.what.empty() && !error.remedy.empty(), "an error is described");
      break;
    }
  }
  require(answers.text().size() == answered, "a line that is not a command has no answer");
  return answers.all() + answers.text();
}

void checkAnswers(std::string_view answers) {
  while (!answers.empty()) {
    const std::string_view line = answers.substr(0, answers.find('\n'));
    require(line.size() < answers.size(), "an answer ends with its line");
    answers.remove_prefix(line.size() + 1);
    require(readJson(line).has_value(), "RapidJSON reads the answer",
            [&] { return std::string(line); });
  }
}

std::string nodesOf(const tessera::session::ParsedSnippet& parsed) {
  WrittenText output;
  foundation::json::Writer json(output.text(), foundation::json::Form::kCompact);
  tessera::formats::NodeJson nodes(output, json, {});
  json.beginObject();
  nodes.writeMember(parsed, {});
  json.endObject();
  return output.all() + output.text() + '\n';
}

void checkRecording(const hostile::Host& host, const SourceFile& file) {
  WrittenText commands;
  tessera::session::Recording recording(commands);
  auto session = host.makeSession(&recording);
  const auto parsed = tessera::session::FileParser(session, host.appendix(), &recording)
                          .parse(file.name, tessera::source::decodeSource(file.name, file.bytes));
  const std::string answers = replay(host, commands.all() + commands.text());
  checkAnswers(answers);
  require(answers.ends_with(nodesOf(parsed.snippet)), "a recording makes the same document",
          [&] { return commands.all(); });
}

}  // namespace

void checkReplay(std::string_view input) {
  static const hostile::Host host;
  Choices choices(input);
  if (choices.flag()) return checkRecording(host, readFile(choices));
  const std::string_view commands = choices.rest();
  const std::string answers = replay(host, commands);
  checkAnswers(answers);
  require(replay(host, commands) == answers, "the same commands have the same answers");
}

}  // namespace quenlith::fuzz
