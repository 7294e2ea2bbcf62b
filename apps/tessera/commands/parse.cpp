#include "tessera/commands/parse.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessera/commands/PageCollector.hpp"
#include "tessera/commands/PageJob.hpp"
#include "tessera/commands/ParseJob.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/Interruption.hpp"
#include "tessera/files/PartialFile.hpp"
#include "tessera/files/standardStreams.hpp"
#include "tessera/formats/DocumentRecord.hpp"
#include "tessera/run/FileRun.hpp"
#include "tessera/run/TextCollector.hpp"
#include "tessera/run/listFiles.hpp"
#include "tessera/terminal/settings.hpp"
#include "tessera/tree/TreeStyle.hpp"

namespace tessera::commands {
namespace {

using inputs::Input;

[[noreturn]] void refuseFile(const std::string& name, const std::string& what,
                             const std::string& remedy) {
  throw diagnostics::ProblemError({.file = name, .place = {}, .what = what, .remedy = remedy});
}

[[noreturn]] void refuseSameOutput(const std::string& name) {
  refuseFile(name, "the file to record to is where the output goes",
             "name another file after --record");
}

/// Returns whether the file is empty or begins as `session::Recording` does.
bool isRecording(const std::string& name) {
  constexpr std::string_view kBegin = "{\"op\":\"document\"}\n";
  std::array<char, kBegin.size()> begin{};
  std::ifstream file(name, std::ios::binary);
  file.read(begin.data(), begin.size());
  const std::string_view read(begin.data(), static_cast<std::size_t>(file.gcount()));
  return read.empty() || read == kBegin;
}

/// Throws ProblemError when the recording would destroy something else.
void requireReplaceable(const ParseOptions& options) {
  const std::string& name = options.recordFile;
  const std::string& output = options.run.outputFile;
  if (files::isRedirectedTo(STDOUT_FILENO, name)) refuseSameOutput(name);
  if (!output.empty() && files::haveCommonName(name, output)) refuseSameOutput(name);
  if (options.replacesAnyFile || !std::filesystem::is_regular_file(name) || isRecording(name)) {
    return;
  }
  refuseFile(name, "the file to record to exists and is not a recording",
             "name another file after --record, or add --force to replace it");
}

/// Says that all records of an earlier run are kept, and notes whether one is of an input that
/// could not be parsed.
run::RecordRules recordRules(bool& hasErrors) {
  // Empty members may be left out.
  return {.head = &formats::recordHead,
          .contents = {",\"nodes\":", ",\"lines\":", formats::kErrorRecordMark, "}"},
          .hasErrorRecords = true,
          .dependsOnOthers = {},
          .note = [&hasErrors](std::string_view content) {
            hasErrors |= content.starts_with(formats::kErrorRecordMark);
          }};
}

std::vector<Input> listInputsOf(const ParseOptions& options) {
  if (options.recordFile.empty()) return run::listFiles(options.run);
  std::vector<Input> inputs = run::listFiles(
      options.run, {{.name = options.recordFile, .option = "--record", .use = "record to"}});
  requireReplaceable(options);
  return inputs;
}

/// Returns the style of a tree that is written to `descriptor`.
tree::TreeStyle styleOf(const ParseOptions& options, int descriptor) {
  const std::optional<std::size_t> columns =
      options.columns ? options.columns : terminal::terminalColumns(descriptor);
  const bool isTerminal = ::isatty(descriptor) != 0;
  const bool isAscii = isTerminal && !terminal::usesUtf8();
  return {.color = terminal::wantsColor(options.color, descriptor),
          .symbols = isAscii ? tree::Symbols::kAscii : tree::Symbols::kUnicode,
          .columns = columns ? std::max(*columns, tree::TreeStyle::kFewestColumns)
                             : terminal::RowFolder::kUnlimited,
          .isTerminal = isTerminal};
}

/// A run of the command, perhaps with a recording of its calls.
class ParseRun {
 public:
  ParseRun(const ParseOptions& options, std::vector<Input> files)
      : options(options),
        rules(recordRules(hasErrors)),
        run(options.run, std::move(files),
            options.format == ParseFormat::kNdjson ? &rules : nullptr) {
    if (options.recordFile.empty()) return;
    recordFile.emplace(options.recordFile, files::Leftover::kReplaced);
    requireTwoFiles();
    recording.emplace(recordFile->output());
  }

  int parse() {
    const int status = options.format == ParseFormat::kHtml ? writePage() : writeDocuments();
    run.complete();
    if (recordFile) recordFile->complete();
    return status;
  }

 private:
  run::Processes processes() const noexcept {
    if (recording) return run::Processes::kOwn;
    const bool hasErrorRecords = options.format == ParseFormat::kNdjson;
    return hasErrorRecords || !options.bundles.empty() ? run::Processes::kWorkers
                                                       : run::Processes::kAny;
  }

  session::Recording* recordingOrNull() noexcept { return recording ? &*recording : nullptr; }

  int writePage() {
    PageCollector collector(run.inputs(), run.output(), html::PageUse::kFile);
    const auto makeJob = [this](const workers::JobContext& context) {
      return std::make_unique<PageJob>(options, run.inputs(), recordingOrNull(), context);
    };
    run.work(makeJob, collector, processes());
    collector.finish();
    return collector.status();
  }

  int writeDocuments() {
    run::TextCollector collector(
        run.inputs(), run.output(),
        {.what = "no document could be made",
         .appendRecord =
             [this](std::string& text, const diagnostics::Problem& problem) {
               appendProblem(text, options, problem);
             }},
        options.format == ParseFormat::kTree ? "\n" : "");
    const tree::TreeStyle style = styleOf(options, run.outputDescriptor());
    const auto makeJob = [&, this](const workers::JobContext& context) {
      return std::make_unique<ParseJob>(options, style, run.inputs(), recordingOrNull(), context);
    };
    run.work(makeJob, collector, processes());
    return hasErrors || collector.hasFailed() ? kInputsFailed : kFine;
  }

  /// Two names may be of one file.
  void requireTwoFiles() const {
    struct stat written;
    struct stat recorded;
    if (::fstat(run.outputDescriptor(), &written) != 0) return;
    if (::fstat(recordFile->descriptor(), &recorded) != 0 || !S_ISREG(recorded.st_mode)) return;
    if (written.st_dev == recorded.st_dev && written.st_ino == recorded.st_ino) {
      refuseSameOutput(options.recordFile);
    }
  }

  const ParseOptions& options;
  // Whether a record of an earlier run is of an input that could not be parsed.
  bool hasErrors = false;
  run::RecordRules rules;
  run::FileRun run;
  std::optional<files::PartialFile> recordFile;
  std::optional<session::Recording> recording;
};

void requireRecords(const ParseOptions& options) {
  if (options.format == ParseFormat::kNdjson && !options.run.outputFile.empty()) return;
  refuseFile("tessera", "--resume needs an output file that has one record per input",
             "add --format ndjson and -o FILE, or leave --resume out");
}

}  // namespace

int parse(const ParseOptions& options) {
  if (options.run.resumes) requireRecords(options);
  std::vector<Input> files = listInputsOf(options);
  files::endOnInterruption();
  return ParseRun(options, std::move(files)).parse();
}

}  // namespace tessera::commands
