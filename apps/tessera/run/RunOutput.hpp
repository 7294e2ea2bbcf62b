#pragma once

#include <optional>

#include "tessera/files/OutputFile.hpp"
#include "tessera/files/PartialFile.hpp"
#include "tessera/run/RunOptions.hpp"

namespace tessera::run {

/// Where the output of a run goes: standard output, or a file that appears when it is complete.
class RunOutput {
 public:
  /// Throws OutputError when the file cannot be written, and ProblemError when it cannot be resumed
  /// because it is standard output.
  RunOutput(const RunOptions& options, files::Incomplete incomplete);

  files::OutputFile& text() noexcept { return partial ? partial->output() : standardOutput; }
  /// The open file that the text goes to.
  int descriptor() const noexcept;
  /// Whether the run is to be resumed, but an earlier one has written everything: there is nothing
  /// to write.
  bool wasCompleted() const noexcept { return completed; }
  /// The file that is written; valid in a resumed run that was not completed.
  files::PartialFile& file() noexcept { return *partial; }

  /// Writes what is buffered, and renames the file. Throws OutputError.
  void complete();

 private:
  files::OutputFile standardOutput;
  bool completed;
  std::optional<files::PartialFile> partial;
};

}  // namespace tessera::run
