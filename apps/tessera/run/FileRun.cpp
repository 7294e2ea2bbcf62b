#include "tessera/run/FileRun.hpp"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/inputs/listInputs.hpp"
#include "tessera/workers/WorkerPool.hpp"
#include "tessera/workers/runHere.hpp"

namespace tessera::run {
namespace {

/// Passes results on, and ends the run when one of the first inputs has a record: that would be out
/// of order.
class FailureGuard final : public workers::Collector {
 public:
  FailureGuard(const std::vector<inputs::Input>& inputs, std::size_t failedBefore,
               workers::Collector& next)
      : inputs(inputs), failedBefore(failedBefore), next(next) {}

  void addText(std::string_view piece) override {
    if (ended >= failedBefore) return next.addText(piece);
    held += piece;
  }
  void addMessage(std::string_view message) override { next.addMessage(message); }
  void rest() override { next.rest(); }
  void loseInput(std::size_t index, const workers::Loss& loss) override {
    held.clear();
    ++ended;
    next.loseInput(index, loss);
  }

  void endInput(std::size_t index, workers::Outcome outcome) override {
    if (index < failedBefore && outcome == workers::Outcome::kDone) {
      throw diagnostics::ProblemError({.file = inputs[index].path,
                                       .place = {},
                                       .what = "the interrupted run could not use this file, but "
                                               "this run can: its record would be out of order",
                                       .remedy = "run without --resume"});
    }
    if (!held.empty()) next.addText(std::exchange(held, {}));
    ++ended;
    next.endInput(index, outcome);
  }

 private:
  const std::vector<inputs::Input>& inputs;
  std::size_t failedBefore;
  workers::Collector& next;
  std::size_t ended = 0;
  // What one of the first inputs has given so far.
  std::string held;
};

/// A glob or a directory that is not the one that was meant would otherwise look like success. A
/// list of files may well be empty, and so may a shard.
void reportIfNothingIsFound(const RunOptions& options, const std::vector<inputs::Input>& files) {
  if (!files.empty() || options.inputs.paths.empty() || options.inputs.shard.count > 1) return;
  diagnostics::report(
      "tessera: note: no file was found; hidden files and those that .gitignore or --glob excludes "
      "are left out");
}

/// Marks the first input that is not left out when it is read: it is the first one also where those
/// are not listed.
void markFirst(std::vector<inputs::Input>& files) {
  const files::StreamFiles streams;
  const auto first = std::ranges::find_if_not(
      files, [&](const inputs::Input& file) { return inputs::isLeftOut(file, streams); });
  if (first != files.end()) first->isFirst = true;
}

}  // namespace

FileRun::FileRun(const RunOptions& options, std::vector<inputs::Input> files,
                 const RecordRules* rules)
    : options(options),
      target(options, rules == nullptr ? files::Incomplete::kRemoved : files::Incomplete::kKept),
      files(std::move(files)) {
  reportIfNothingIsFound(options, this->files);
  markFirst(this->files);
  if (!options.resumes) return;
  if (target.wasCompleted()) {
    noteRecords(options.outputFile, this->files, *rules);
    this->files.clear();
    return;
  }
  ResumedInputs resumed = resumeRecords(target.file(), std::move(this->files), *rules);
  failedBefore = resumed.failed.size();
  this->files = std::move(resumed.failed);
  this->files.insert(this->files.end(), std::move_iterator(resumed.rest.begin()),
                     std::move_iterator(resumed.rest.end()));
}

void FileRun::work(const workers::MakeJob& makeJob, workers::Collector& collector,
                   Processes processes) {
  FailureGuard guard(files, failedBefore, collector);
  progress::RunProgress progress(options.progress, files);
  if (isDoneHere(processes)) {
    workers::runHere(makeJob, guard, files.size(), progress);
  } else {
    workers::WorkerPool pool(
        {.workers = options.workers, .timeout = options.timeout, .progress = &progress}, makeJob,
        guard);
    pool.run(files.size());
  }
  progress.finish();
}

bool FileRun::isDoneHere(Processes processes) const noexcept {
  if (processes == Processes::kOwn) return true;
  if (options.timeout.count() != 0) return false;
  return options.workers == 1 || (processes == Processes::kAny && files.size() == 1);
}

}  // namespace tessera::run
