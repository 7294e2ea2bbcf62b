#include "tessera/commands/check.hpp"

#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessera/commands/CheckCollector.hpp"
#include "tessera/commands/CheckJob.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/Interruption.hpp"
#include "tessera/formats/DocumentRecord.hpp"
#include "tessera/run/FileRun.hpp"
#include "tessera/run/listFiles.hpp"
#include "tessera/terminal/settings.hpp"

namespace tessera::commands {
namespace {

/// Says which records of an earlier run are kept. `status` becomes kFailuresFound when one of them
/// has a diagnostic at or above `failOn`.
///
/// The marker that a task lacks may be in any file of the run: a record with one is written again.
run::RecordRules recordRules(FailOn failOn, int& status) {
  // In text, quotes are escaped: these are members.
  const auto lacksMarker = [](std::string_view content) {
    return content.find("\"id\":\"missing_task_marker_pair\"") != content.npos;
  };
  const auto note = [failOn, &status](std::string_view content) {
    const std::string_view mark =
        failOn == FailOn::kFailure ? "\"severity\":\"failure\"" : "\"severity\":";
    const bool isFound = failOn != FailOn::kNever && content.find(mark) != content.npos;
    if (isFound) status = kFailuresFound;
  };
  return {.head = &formats::recordHead,
          .contents = {",\"diagnostics\":"},
          .hasErrorRecords = false,
          .dependsOnOthers = lacksMarker,
          .note = note};
}

void requireFixable(const CheckOptions& options) {
  if (options.fixes == Fixes::kNone) return;
  const auto& inputs = options.run.inputs;
  if (std::ranges::find(inputs.paths, "-") == inputs.paths.end()) return;
  throw diagnostics::ProblemError({.file = "-",
                                   .place = {},
                                   .what = "standard input cannot be fixed",
                                   .remedy = "name a file, or check it without --fix"});
}

void requireRecords(const CheckOptions& options) {
  const bool hasRecords = options.format == CheckFormat::kJson && options.fixes == Fixes::kNone;
  if (!options.run.resumes || (hasRecords && !options.run.outputFile.empty())) return;
  throw diagnostics::ProblemError(
      {.file = "tessera",
       .place = {},
       .what = "--resume needs an output file that has one record per input",
       .remedy = "add --format json and -o FILE without --fix, or leave --resume out"});
}

terminal::Style styleOf(const CheckOptions& options, int descriptor) {
  return {.color = terminal::wantsColor(options.color, descriptor),
          .columns = terminal::columnsOf(descriptor),
          .isTerminal = ::isatty(descriptor) != 0};
}

run::Processes processesOf(const CheckOptions& options) {
  // A worker that is ended would leave its temporary file.
  if (options.fixes == Fixes::kApplied) return run::Processes::kOwn;
  return options.bundles.empty() ? run::Processes::kAny : run::Processes::kWorkers;
}

int runCheck(const CheckOptions& options, std::vector<inputs::Input> files) {
  int resumedStatus = kFine;
  const run::RecordRules rules = recordRules(options.failOn, resumedStatus);
  run::FileRun run(options.run, std::move(files),
                   options.format == CheckFormat::kJson ? &rules : nullptr);
  CheckCollector collector(options, run.inputs(), run.output(),
                           styleOf(options, run.outputDescriptor()));
  const auto makeJob = [&](const workers::JobContext& context) {
    return std::make_unique<CheckJob>(options, run.inputs(), context);
  };
  run.work(makeJob, collector, processesOf(options));
  collector.finish();
  run.complete();
  return std::max(resumedStatus, collector.status());
}

}  // namespace

int check(const CheckOptions& options) {
  requireFixable(options);
  requireRecords(options);
  std::vector<inputs::Input> files = run::listFiles(options.run);
  files::endOnInterruption();
  return runCheck(options, std::move(files));
}

}  // namespace tessera::commands
