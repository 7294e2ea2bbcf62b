#include "tessera/commands/markers.hpp"

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessera/check/listing/listMarkers.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/Interruption.hpp"
#include "tessera/formats/DocumentRecord.hpp"
#include "tessera/reports/MarkerReport.hpp"
#include "tessera/run/FileJob.hpp"
#include "tessera/run/FileRun.hpp"
#include "tessera/run/TextCollector.hpp"
#include "tessera/run/listFiles.hpp"

namespace tessera::commands {
namespace {

class MarkersJob final : public run::FileJob {
 public:
  MarkersJob(const MarkersOptions& options, const std::vector<inputs::Input>& inputs,
             const workers::JobContext& context)
      : FileJob({.bundles = options.bundles, .pieces = options.pieces}, inputs, context),
        append(options.format == MarkersFormat::kJson ? &reports::appendMarkerJson
                                                      : &reports::appendMarkerRows) {}

 private:
  void work(const std::string& path) override {
    const auto listed = loseWithoutMemory(path, [&] {
      return check::listing::listMarkers(path, parse(path),
                                         [this](const auto& marker) { return isAccepted(marker); });
    });
    append(output().text(), listed);
  }

  void (*append)(std::string& text, const check::listing::ListedFile& file);
};

void requireRecords(const MarkersOptions& options) {
  const bool hasRecords = options.format == MarkersFormat::kJson;
  if (!options.run.resumes || (hasRecords && !options.run.outputFile.empty())) return;
  throw diagnostics::ProblemError(
      {.file = "tessera",
       .place = {},
       .what = "--resume needs an output file that has one record per input",
       .remedy = "add --format json and -o FILE, or leave --resume out"});
}

}  // namespace

int markers(const MarkersOptions& options) {
  requireRecords(options);
  std::vector<inputs::Input> files = run::listFiles(options.run);
  files::endOnInterruption();
  const run::RecordRules rules{.head = &formats::recordHead,
                               .contents = {",\"markers\":"},
                               .hasErrorRecords = false,
                               .dependsOnOthers = {},
                               .note = {}};
  run::FileRun run(options.run, std::move(files),
                   options.format == MarkersFormat::kJson ? &rules : nullptr);
  run::TextCollector collector(run.inputs(), run.output(),
                               {.what = "its markers could not be listed", .appendRecord = {}});
  const auto makeJob = [&](const workers::JobContext& context) {
    return std::make_unique<MarkersJob>(options, run.inputs(), context);
  };
  run.work(makeJob, collector,
           options.bundles.empty() ? run::Processes::kAny : run::Processes::kWorkers);
  run.complete();
  return collector.hasFailed() ? kInputsFailed : kFine;
}

}  // namespace tessera::commands
