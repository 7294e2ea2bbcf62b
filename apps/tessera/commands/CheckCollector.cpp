#include "tessera/commands/CheckCollector.hpp"

#include <algorithm>
#include <sstream>
#include <utility>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/reports/CheckJson.hpp"
#include "tessera/reports/CheckSarif.hpp"
#include "tessera/reports/TextReport.hpp"
#include "tessera/run/TextCollector.hpp"

namespace tessera::commands {

using check::catalogue::CheckedFile;
using check::catalogue::Diagnostic;
using check::catalogue::Severity;

namespace {

std::unique_ptr<reports::CheckReport> makeReport(CheckFormat format, files::OutputFile& output,
                                                 const terminal::Style& style) {
  if (format == CheckFormat::kJson) return std::make_unique<reports::CheckJson>(output);
  if (format == CheckFormat::kSarif) return std::make_unique<reports::CheckSarif>(output);
  return std::make_unique<reports::TextReport>(output, style);
}

bool mustFail(const CheckedFile& file, FailOn failOn) {
  if (failOn == FailOn::kNever) return false;
  if (failOn == FailOn::kWarning) return !file.diagnostics.empty();
  return std::ranges::any_of(file.diagnostics, [](const Diagnostic& diagnostic) {
    return check::catalogue::severityOf(diagnostic) == Severity::kFailure;
  });
}

}  // namespace

CheckCollector::CheckCollector(const CheckOptions& options,
                               const std::vector<inputs::Input>& inputs, files::OutputFile& output,
                               const terminal::Style& style)
    : options(options),
      inputs(inputs),
      output(output),
      style(style),
      report(makeReport(options.format, output, style)),
      files([this](const CheckedFile& file) { take(file); }) {}

void CheckCollector::addMessage(std::string_view message) {
  output.flush();
  diagnostics::report(message);
}

void CheckCollector::endInput(std::size_t /*index*/, workers::Outcome outcome) {
  const std::string bytes = std::exchange(encoded, {});
  if (outcome == workers::Outcome::kSkipped) return;
  check::transfer::CheckResult result = check::transfer::decode(bytes);
  for (const diagnostics::Problem& problem : result.problems) addProblem(problem);
  if (!result.difference.empty()) writeDifference(result.difference);
  if (result.file) files.add(std::move(*result.file));
}

void CheckCollector::loseInput(std::size_t index, const workers::Loss& loss) {
  encoded.clear();
  const diagnostics::ProblemError error(
      run::problemOf(inputs[index].path, "it could not be checked", loss));
  addMessage(error.what());
  addProblem(error.problem());
}

void CheckCollector::finish() {
  files.finish();
  if (options.fixes != Fixes::kShown) report->finish();
}

void CheckCollector::addProblem(const diagnostics::Problem& problem) {
  report->addProblem(problem);
  exitStatus = kInputsFailed;
}

void CheckCollector::take(const CheckedFile& file) {
  if (mustFail(file, options.failOn)) exitStatus = std::max(exitStatus, kFailuresFound);
  if (options.fixes != Fixes::kShown) report->write(file);
}

/// A terminal gets no control characters; `patch` gets the text as it is.
void CheckCollector::writeDifference(const std::string& difference) {
  if (!style.isTerminal) {
    output.text() += difference;
  } else {
    std::istringstream lines(difference);
    for (std::string line; std::getline(lines, line);) {
      output.text() += diagnostics::terminalText(line) + '\n';
    }
  }
  output.flushIfLarge();
}

}  // namespace tessera::commands
