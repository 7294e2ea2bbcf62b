#include "tessera/run/RunOutput.hpp"

#include <unistd.h>

namespace tessera::run {

RunOutput::RunOutput(const RunOptions& options, files::Incomplete incomplete)
    : standardOutput(STDOUT_FILENO, "standard output") {
  if (options.outputFile.empty()) return;
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
