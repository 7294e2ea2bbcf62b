#include "tessera/commands/ParseJob.hpp"

#include <new>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/formats/DocumentJson.hpp"
#include "tessera/formats/DocumentRecord.hpp"
#include "tessera/formats/DocumentTree.hpp"
#include "tessera/inputs/isBinaryFile.hpp"

namespace tessera::commands {
namespace {

using workers::Outcome;

std::unique_ptr<formats::DocumentWriter> makeWriter(const ParseOptions& options,
                                                    files::OutputText& output) {
  using foundation::json::Form;
  const auto records = options.trace ? formats::Records::kShown : formats::Records::kHidden;
  if (options.format == ParseFormat::kTree) {
    return std::make_unique<formats::DocumentTree>(output, records);
  }
  const Form form = options.format == ParseFormat::kJson ? Form::kIndented : Form::kCompact;
  return std::make_unique<formats::DocumentJson>(
      output, formats::JsonLayout{form, options.emptyMembers}, records);
}

host::StartEvents startEventsOf(const workers::JobContext& context) {
  return context.isRepeated ? host::StartEvents::kDropped : host::StartEvents::kReported;
}

}  // namespace

ParseJob::ParseJob(const ParseOptions& options, const std::vector<inputs::Input>& inputs,
                   session::Recording* recording, const workers::JobContext& context)
    : options(options),
      inputs(inputs),
      output(context.output),
      messages(context.messages),
      host(options.bundles, options.pieces, startEventsOf(context)),
      log(options.trace ? std::make_unique<session::LogCollector>() : nullptr),
      session(host.snippetParsers(), log.get(), recording),
      parser(session, host.appendix(), recording),
      writer(makeWriter(options, output)) {
  session.showLineIn(context.line);
}

Outcome ParseJob::run(std::size_t index) {
  const inputs::Input& input = inputs[index];
  if (input.isFound && inputs::isBinaryFile(input.path)) return Outcome::kSkipped;
  try {
    parse(input.path);
    return Outcome::kDone;
  } catch (const diagnostics::OutputError&) {
    throw;
  } catch (const diagnostics::ProblemError& error) {
    return fail(error);
  }
}

/// Parses `path` or throws ProblemError. Without memory for its document, only this file is lost; a
/// document that was written in part would be another matter.
session::ParsedFile ParseJob::read(const std::string& path) {
  try {
    return parser.parse(path);
  } catch (const std::bad_alloc&) {
    throw diagnostics::ProblemError({.file = path,
                                     .place = {},
                                     .what = "there is not enough memory to parse it",
                                     .remedy = "run fewer workers (-j), or split the file"});
  }
}

/// The memory of a file is freed before the next one is read.
void ParseJob::parse(const std::string& path) {
  session::ParsedFile file = read(path);
  file.snippet.code = {};
  writer->write({path, file.snippet, session.parsers()});
}

Outcome ParseJob::fail(const diagnostics::ProblemError& error) {
  messages.report(error.what());
  appendProblem(output.text(), options, error.problem());
  return Outcome::kFailed;
}

void appendProblem(std::string& text, const ParseOptions& options,
                   const diagnostics::Problem& problem) {
  if (options.format != ParseFormat::kNdjson) return;
  formats::appendErrorRecord(text, problem, options.emptyMembers);
}

}  // namespace tessera::commands
