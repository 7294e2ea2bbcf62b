#include "tessera/commands/ParseJob.hpp"

#include <cstdint>

#include "tessera/formats/DocumentJson.hpp"
#include "tessera/formats/DocumentRecord.hpp"
#include "tessera/tree/DocumentTree.hpp"

namespace tessera::commands {
namespace {

std::unique_ptr<formats::DocumentWriter> makeWriter(const ParseOptions& options,
                                                    const tree::TreeStyle& style,
                                                    files::OutputText& output) {
  using foundation::json::Form;
  const auto records = options.trace ? formats::Records::kShown : formats::Records::kHidden;
  if (options.format == ParseFormat::kTree) {
    return std::make_unique<tree::DocumentTree>(output, style, records);
  }
  const Form form = options.format == ParseFormat::kJson ? Form::kIndented : Form::kCompact;
  return std::make_unique<formats::DocumentJson>(
      output, formats::JsonLayout{form, options.emptyMembers}, records);
}

// Writing a document takes longer than parsing its file.
constexpr std::uint64_t kParsingShare = progress::InputProgress::kWhole / 5 * 2;

/// Snippet parsers of other bundles may look at earlier nodes, and a record or a recording may
/// tell where the nodes of a line are in the document.
bool sparesPlainLines(const ParseOptions& options) {
  return options.bundles.empty() && !options.trace && options.recordFile.empty();
}

}  // namespace

ParseJob::ParseJob(const ParseOptions& options, const tree::TreeStyle& style,
                   const std::vector<inputs::Input>& inputs, session::Recording* recording,
                   const workers::JobContext& context)
    : FileJob({.bundles = options.bundles,
               .pieces = options.pieces,
               .keepsRecords = options.trace,
               .recording = recording,
               .sparesPlainLines = sparesPlainLines(options),
               .parsingShare = kParsingShare},
              inputs, context),
      options(options),
      writing({&context.progress, kParsingShare}),
      writer(makeWriter(options, style, output())) {}

/// The memory of a file is freed before the next one is read.
void ParseJob::work(const std::string& path) {
  session::ParsedFile file = loseWithoutMemory(path, [&] { return parse(path); });
  if (!file.snippet.parts.needsText()) file.snippet.code = {};
  writer->write({path, file.snippet, parsers(), writing});
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
