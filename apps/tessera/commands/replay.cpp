#include "tessera/commands/replay.hpp"

#include <unistd.h>

#include <optional>
#include <string>

#include "fl/i18n/utf8.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/ByteLines.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/host/ServiceHost.hpp"
#include "tessera/replay/CommandReader.hpp"
#include "tessera/replay/Replay.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::commands {
namespace {

bool isBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r") == line.npos;
}

/// Reads `line`. Throws CommandError.
replay::Command readCommand(std::string_view line) {
  if (const auto invalid = fl::i18n::findInvalidUtf8(line)) {
    const auto before = fl::i18n::utf8_to_ustring(line.substr(0, *invalid));
    throw replay::CommandError{.column = source::countCharacters(before) + 1,
                               .what = "a byte is not valid UTF-8",
                               .remedy = "convert the file to UTF-8"};
  }
  const fl::i18n::ustring text = fl::i18n::utf8_to_ustring(line);
  return replay::CommandReader(text).read();
}

void replayLines(const std::string& name, replay::Replay& replay, files::OutputFile& answers) {
  files::ByteLines lines(name);
  std::uint64_t number = 0;
  while (true) {
    // A client that waits for each answer before it writes the next command must get the answer
    // before this program waits for input.
    if (!lines.isNextHere()) answers.flush();
    const std::optional<std::string_view> line = lines.next();
    if (!line) return;
    ++number;
    if (isBlank(*line)) continue;
    try {
      replay.run(readCommand(*line));
    } catch (const replay::CommandError& error) {
      answers.flush();
      throw diagnostics::ProblemError({.file = name,
                                       .place = diagnostics::Place{number, error.column},
                                       .what = error.what,
                                       .remedy = error.remedy});
    }
  }
}

}  // namespace

int replay(const ReplayOptions& options) {
  host::ServiceHost host(options.bundles, host::Pieces::kDropped);
  files::OutputFile answers(STDOUT_FILENO, "standard output");
  replay::Replay replay(host.snippetParsers(), host.appendix(), answers);
  replayLines(options.file, replay, answers);
  answers.flush();
  return kFine;
}

}  // namespace tessera::commands
