#pragma once

#include <cstddef>
#include <vector>

#include "tessera/inputs/Input.hpp"
#include "tessera/run/RunOptions.hpp"
#include "tessera/run/RunOutput.hpp"
#include "tessera/run/resumeRecords.hpp"
#include "tessera/workers/Collector.hpp"
#include "tessera/workers/Job.hpp"

namespace tessera::run {

/// Which processes do the work of a run.
enum class Processes {
  /// Workers; a single file without a time limit is quicker in the program's own process.
  kAny,
  /// Workers even for a single file: one that crashes is reported. For bundles of others and for
  /// output with error records.
  kWorkers,
  /// The program's own process: the work depends on the order in which files are changed or called.
  kOwn,
};

/// The run of a command over its inputs: lists them, opens the output, and has a job done.
class FileRun {
 public:
  /// The inputs are `files`. `rules` is null if the output has no records that a run can continue.
  /// Borrows `options`. Writes a note to standard error if the paths named have no files. Throws
  /// ProblemError.
  FileRun(const RunOptions& options, std::vector<inputs::Input> files, const RecordRules* rules);

  /// The inputs in the order of the work. Stays valid as long as the run.
  const std::vector<inputs::Input>& inputs() const noexcept { return files; }
  files::OutputFile& output() noexcept { return target.text(); }
  /// The open file that the output goes to.
  int outputDescriptor() const noexcept { return target.descriptor(); }

  /// Does the work on all inputs; `collector` takes what comes of it. With one worker and no time
  /// limit, and where `processes` says so, in this process. Throws WorkerUnusable and what the job
  /// and the collector throw.
  void work(const workers::MakeJob& makeJob, workers::Collector& collector, Processes processes);

  /// Call it once everything is written. Throws OutputError.
  void complete() { target.complete(); }

 private:
  bool isDoneHere(Processes processes) const noexcept;

  const RunOptions& options;
  RunOutput target;
  std::vector<inputs::Input> files;
  // How many of the first inputs had no record in the earlier run and can have none in this.
  std::size_t failedBefore = 0;
};

}  // namespace tessera::run
