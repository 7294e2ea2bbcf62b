#include "tessera/run/RunOutput.hpp"

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace tessera::run {

namespace {

/// Returns whether an earlier run has written everything.
bool isComplete(const RunOptions& options) {
  namespace fs = std::filesystem;
  if (!options.resumes) return false;
  const files::OutputNames names = files::outputNames(options.outputFile);
  std::error_code error;
  return fs::is_regular_file(names.complete, error) && !fs::exists(names.partial, error);
}

}  // namespace

RunOutput::RunOutput(const RunOptions& options, files::Incomplete incomplete)
    : standardOutput(STDOUT_FILENO, "standard output"), completed(isComplete(options)) {
  if (completed || options.outputFile.empty()) return;
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
