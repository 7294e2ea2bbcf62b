#include "tessera/commands/parse.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "tessera/commands/ParseCollector.hpp"
#include "tessera/commands/ParseJob.hpp"
#include "tessera/commands/resumeRecords.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/files/Interruption.hpp"
#include "tessera/files/PartialFile.hpp"
#include "tessera/files/standardStreams.hpp"
#include "tessera/inputs/listInputs.hpp"
#include "tessera/workers/WorkerPool.hpp"

namespace tessera::commands {
namespace {

using files::PartialFile;
using inputs::Input;

[[noreturn]] void refuseFile(const std::string& name, const std::string& what,
                             const std::string& remedy) {
  throw diagnostics::ProblemError({.file = name, .place = {}, .what = what, .remedy = remedy});
}

/// Tells whether a path is the file `name`.
class SameFile {
 public:
  explicit SameFile(const std::string& name) : name(name) {
    exists = ::stat(name.c_str(), &status) == 0 && S_ISREG(status.st_mode);
  }

  bool operator()(const std::string& path) const {
    if (!exists) return false;
    if (path == "-") return files::isRedirectedTo(STDIN_FILENO, name);
    struct stat other;
    return ::stat(path.c_str(), &other) == 0 && other.st_dev == status.st_dev &&
           other.st_ino == status.st_ino;
  }

 private:
  std::string name;
  struct stat status = {};
  bool exists = false;
};

/// Leaves out `name` where it was found in a directory. Throws ProblemError where the user named it
/// as an input.
void keepSeparate(std::vector<Input>& inputs, const std::string& name, const std::string& option) {
  for (const std::string& written : {name, name + ".partial"}) {
    const SameFile isWritten(written);
    for (const Input& input : inputs) {
      if (input.isFound || !isWritten(input.path)) continue;
      refuseFile(written,
                 std::string("the file to ") + (option == "-o" ? "write" : "record to") +
                     " is one of the files to parse",
                 "name another file after " + option);
    }
    std::erase_if(inputs, [&](const Input& input) { return isWritten(input.path); });
  }
}

bool isRecording(const std::string& name) {
  constexpr std::string_view kBegin = "{\"op\":\"";
  std::array<char, kBegin.size()> begin{};
  std::ifstream file(name, std::ios::binary);
  file.read(begin.data(), begin.size());
  const std::string_view read(begin.data(), static_cast<std::size_t>(file.gcount()));
  return read.empty() || read == kBegin;
}

/// Throws ProblemError when the recording would destroy something else.
void requireReplaceable(const ParseOptions& options) {
  const std::string& name = options.recordFile;
  if (files::isRedirectedTo(STDOUT_FILENO, name) || name == options.outputFile) {
    refuseFile(name, "the file to record to is where the output goes",
               "name another file after --record");
  }
  if (options.replacesAnyFile || !std::filesystem::is_regular_file(name) || isRecording(name)) {
    return;
  }
  refuseFile(name, "the file to record to exists and is not a recording",
             "name another file after --record, or add --force to replace it");
}

std::vector<Input> listFiles(const ParseOptions& options) {
  // Where inputs are counted, binary files are not inputs.
  const bool isCounted = options.resumes || options.inputs.shard.count > 1;
  std::vector<Input> inputs = inputs::listInputs(
      options.inputs, isCounted ? inputs::BinaryFiles::kLeftOut : inputs::BinaryFiles::kListed);
  if (!options.outputFile.empty()) keepSeparate(inputs, options.outputFile, "-o");
  if (!options.recordFile.empty()) keepSeparate(inputs, options.recordFile, "--record");
  return inputs;
}

/// A run of the command: its inputs, and where the documents and the calls go.
class ParseRun {
 public:
  ParseRun(const ParseOptions& options, std::vector<Input> files)
      : options(options), files(std::move(files)) {
    if (!options.outputFile.empty()) openOutput();
    if (!options.recordFile.empty()) {
      recordFile.emplace(options.recordFile, files::Leftover::kReplaced);
      recording.emplace(recordFile->output());
    }
  }

  int run() {
    ParseCollector collector(options, this->files, output());
    if (isInOneProcess()) {
      parseHere(collector);
    } else {
      parseInWorkers(collector);
    }
    output().flush();
    if (outputFile) outputFile->complete();
    if (recordFile) recordFile->complete();
    return std::max(collector.status(), resumed.hasErrors ? kInputsFailed : kFine);
  }

 private:
  void openOutput() {
    const auto leftover =
        options.resumes ? files::Leftover::kContinued : files::Leftover::kReplaced;
    outputFile.emplace(options.outputFile, leftover);
    // Only complete records can be continued.
    if (options.format == ParseFormat::kNdjson) outputFile->keepIncomplete();
    if (options.resumes) resumed = resumeRecords(*outputFile, files);
  }

  files::OutputFile& output() { return outputFile ? outputFile->output() : standardOutput; }

  bool isInOneProcess() const {
    return recording || (options.workers == 1 && options.timeout.count() == 0);
  }

  void parseHere(ParseCollector& collector) {
    std::atomic<std::uint64_t> line = 0;
    ParseJob job(options, files, recording ? &*recording : nullptr,
                 {.output = output(), .messages = collector, .line = line});
    for (std::size_t i = resumed.count; i < files.size(); ++i) {
      collector.endInput(i, job.run(i));
      output().flushIfLarge();
    }
  }

  void parseInWorkers(ParseCollector& collector) {
    const auto makeJob = [this](const workers::JobContext& context) {
      return std::make_unique<ParseJob>(options, files, nullptr, context);
    };
    workers::WorkerPool pool({.workers = options.workers, .timeout = options.timeout}, makeJob,
                             collector);
    pool.run(resumed.count, files.size());
  }

  const ParseOptions& options;
  std::vector<Input> files;
  files::OutputFile standardOutput{STDOUT_FILENO, "standard output"};
  std::optional<PartialFile> outputFile;
  std::optional<PartialFile> recordFile;
  std::optional<session::Recording> recording;
  ResumedRecords resumed;
};

void requireRecords(const ParseOptions& options) {
  if (options.format == ParseFormat::kNdjson && !options.outputFile.empty()) return;
  refuseFile("tessera", "--resume continues the records of a file",
             "add --format ndjson and -o FILE, or leave --resume out");
}

/// Returns whether an earlier run has written everything.
bool isComplete(const ParseOptions& options) {
  return options.resumes && std::filesystem::exists(options.outputFile) &&
         !std::filesystem::exists(options.outputFile + ".partial");
}

}  // namespace

int parse(const ParseOptions& options) {
  if (options.resumes) requireRecords(options);
  if (isComplete(options)) return kFine;
  std::vector<Input> files = listFiles(options);
  if (!options.recordFile.empty()) requireReplaceable(options);
  files::endOnInterruption();
  try {
    return ParseRun(options, std::move(files)).run();
  } catch (const workers::WorkerUnusable& error) {
    diagnostics::report(error.what());
    return kUnusable;
  }
}

}  // namespace tessera::commands
