#include "tessera/commands/parse.hpp"

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

#include "tessera/Problem.hpp"
#include "tessera/commands/FileParser.hpp"
#include "tessera/commands/report.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/output/DocumentJson.hpp"
#include "tessera/output/DocumentTree.hpp"
#include "tessera/services/ServiceHost.hpp"
#include "tessera/session/LogCollector.hpp"

namespace tessera::commands {
namespace {

std::unique_ptr<output::DocumentWriter> makeWriter(const ParseOptions& options,
                                                   output::OutputFile& file) {
  using foundation::json::Form;
  const auto records = options.trace ? output::Records::kShown : output::Records::kHidden;
  if (options.format == ParseFormat::kTree) {
    return std::make_unique<output::DocumentTree>(file, records);
  }
  const Form form = options.format == ParseFormat::kJson ? Form::kIndented : Form::kCompact;
  return std::make_unique<output::DocumentJson>(file, form, records);
}

/// Throws ProblemError when the recording would overwrite an input.
void requireSeparateRecording(const ParseOptions& options) {
  for (const std::string& name : options.files) {
    std::error_code ignored;
    if (!std::filesystem::equivalent(name, options.recordFile, ignored)) continue;
    throw ProblemError({.file = options.recordFile,
                        .place = {},
                        .what = "the file to record to is one of the files to parse",
                        .remedy = "name another file behind --record"});
  }
}

/// Parses one file after the other; each one's memory is free again before the next.
int parseFiles(const ParseOptions& options, FileParser& parser,
               const session::SnippetSession& session) {
  output::OutputFile standardOutput(STDOUT_FILENO, "standard output");
  const auto writer = makeWriter(options, standardOutput);
  int status = kFine;
  for (const std::string& name : options.files) {
    try {
      ParsedFile file = parser.parse(name);
      file.snippet.code = {};
      writer->write({name, file.snippet, session.parsers()});
    } catch (const OutputError&) {
      throw;
    } catch (const ProblemError& error) {
      // What came before goes out first, so that the message stands where it belongs.
      standardOutput.flush();
      report(error.what());
      status = kUnusable;
    }
  }
  standardOutput.flush();
  return status;
}

}  // namespace

int parse(const ParseOptions& options) {
  requireSeparateRecording(options);
  services::ServiceHost host(options.bundles);
  std::optional<session::LogCollector> log;
  if (options.trace) log.emplace();
  std::optional<session::Recording> recording;
  if (!options.recordFile.empty()) recording.emplace(options.recordFile);
  session::Recording* const calls = recording ? &*recording : nullptr;
  session::SnippetSession session(host.snippetParsers(), log ? &*log : nullptr, calls);
  FileParser parser(session, host.appendix(), calls);
  return parseFiles(options, parser, session);
}

}  // namespace tessera::commands
