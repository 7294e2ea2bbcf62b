#include "tessera/commands/parse.hpp"

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/files/standardStreams.hpp"
#include "tessera/formats/DocumentJson.hpp"
#include "tessera/formats/DocumentTree.hpp"
#include "tessera/host/ServiceHost.hpp"
#include "tessera/session/FileParser.hpp"
#include "tessera/session/LogCollector.hpp"

namespace tessera::commands {
namespace {

std::unique_ptr<formats::DocumentWriter> makeWriter(const ParseOptions& options,
                                                    files::OutputFile& file) {
  using foundation::json::Form;
  const auto records = options.trace ? formats::Records::kShown : formats::Records::kHidden;
  if (options.format == ParseFormat::kTree) {
    return std::make_unique<formats::DocumentTree>(file, records);
  }
  const Form form = options.format == ParseFormat::kJson ? Form::kIndented : Form::kCompact;
  return std::make_unique<formats::DocumentJson>(file, form, records);
}

bool isInput(const std::string& input, const std::string& recordFile) {
  if (input == "-") return files::isRedirectedTo(STDIN_FILENO, recordFile);
  std::error_code ignored;
  return std::filesystem::equivalent(input, recordFile, ignored);
}

[[noreturn]] void refuseRecording(const ParseOptions& options, const std::string& what) {
  throw diagnostics::ProblemError({.file = options.recordFile,
                                   .place = {},
                                   .what = "the file to record to is " + what,
                                   .remedy = "name another file after --record"});
}

/// Throws ProblemError when the recording would overwrite an input or mix with the output.
void requireSeparateRecording(const ParseOptions& options) {
  for (const std::string& name : options.files) {
    if (isInput(name, options.recordFile)) refuseRecording(options, "one of the files to parse");
  }
  if (files::isRedirectedTo(STDOUT_FILENO, options.recordFile)) {
    refuseRecording(options, "where standard output goes");
  }
}

/// Parses one file after another. The memory of a file is freed before the next one is read.
int parseFiles(const ParseOptions& options, session::FileParser& parser,
               const session::SnippetSession& session) {
  files::OutputFile standardOutput(STDOUT_FILENO, "standard output");
  const auto writer = makeWriter(options, standardOutput);
  int status = kFine;
  for (const std::string& name : options.files) {
    try {
      session::ParsedFile file = parser.parse(name);
      file.snippet.code = {};
      writer->write({name, file.snippet, session.parsers()});
    } catch (const diagnostics::OutputError&) {
      throw;
    } catch (const diagnostics::ProblemError& error) {
      // The output of earlier files comes before the message.
      standardOutput.flush();
      diagnostics::report(error.what());
      status = kInputsFailed;
    }
  }
  standardOutput.flush();
  return status;
}

}  // namespace

int parse(const ParseOptions& options) {
  if (!options.recordFile.empty()) requireSeparateRecording(options);
  host::ServiceHost host(options.bundles, options.pieces);
  std::optional<session::LogCollector> log;
  if (options.trace) log.emplace();
  std::optional<session::Recording> recording;
  if (!options.recordFile.empty()) recording.emplace(options.recordFile);
  session::Recording* const calls = recording ? &*recording : nullptr;
  session::SnippetSession session(host.snippetParsers(), log ? &*log : nullptr, calls);
  session::FileParser parser(session, host.appendix(), calls);
  return parseFiles(options, parser, session);
}

}  // namespace tessera::commands
