#include "tessera/commands/ParseJob.hpp"

#include "tessera/formats/DocumentJson.hpp"
#include "tessera/formats/DocumentRecord.hpp"
#include "tessera/formats/DocumentTree.hpp"

namespace tessera::commands {
namespace {

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

}  // namespace

ParseJob::ParseJob(const ParseOptions& options, const std::vector<inputs::Input>& inputs,
                   session::Recording* recording, const workers::JobContext& context)
    : FileJob({.bundles = options.bundles,
               .pieces = options.pieces,
               .keepsRecords = options.trace,
               .recording = recording},
              inputs, context),
      options(options),
      writer(makeWriter(options, output())) {}

/// The memory of a file is freed before the next one is read.
void ParseJob::work(const std::string& path) {
  session::ParsedFile file = loseWithoutMemory(path, [&] { return files().parse(path); });
  file.snippet.code = {};
  writer->write({path, file.snippet, parsers()});
}

void ParseJob::addProblem(const diagnostics::Problem& problem) {
  appendProblem(output().text(), options, problem);
}

void appendProblem(std::string& text, const ParseOptions& options,
                   const diagnostics::Problem& problem) {
  if (options.format != ParseFormat::kNdjson) return;
  formats::appendErrorRecord(text, problem, options.emptyMembers);
}

}  // namespace tessera::commands
