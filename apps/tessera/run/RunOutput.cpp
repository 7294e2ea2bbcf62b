#include "tessera/run/RunOutput.hpp"

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/standardStreams.hpp"

namespace tessera::run {
namespace {

/// Such a file is not replaced: others write it, and it keeps what it has.
bool isStandardOutput(const RunOptions& options) {
  return files::isRedirectedTo(STDOUT_FILENO, options.outputFile);
}

/// Returns whether an earlier run has written everything.
bool isComplete(const RunOptions& options) {
  namespace fs = std::filesystem;
  if (!options.resumes || isStandardOutput(options)) return false;
  const files::OutputNames names = files::outputNames(options.outputFile);
  std::error_code error;
  return fs::is_regular_file(names.complete, error) && !fs::exists(names.partial, error);
}

[[noreturn]] void refuseToResume(const std::string& name) {
  throw diagnostics::ProblemError({.file = name,
                                   .place = {},
                                   .what = "this is standard output, which cannot be resumed",
                                   .remedy = "do not redirect standard output to this file"});
}

}  // namespace

RunOutput::RunOutput(const RunOptions& options, files::Incomplete incomplete)
    : standardOutput(STDOUT_FILENO, "standard output"), completed(isComplete(options)) {
  if (completed || options.outputFile.empty()) return;
  if (isStandardOutput(options)) {
    if (options.resumes) refuseToResume(options.outputFile);
    return;
  }
  using files::Leftover;
  partial.emplace(options.outputFile, options.resumes ? Leftover::kContinued : Leftover::kReplaced,
                  incomplete);
}

int RunOutput::descriptor() const noexcept {
  return partial ? partial->descriptor() : STDOUT_FILENO;
}

void RunOutput::complete() {
  text().flush();
  if (partial) partial->complete();
}

}  // namespace tessera::run
