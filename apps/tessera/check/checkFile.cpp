#include "tessera/check/checkFile.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/rules/anchors.hpp"
#include "tessera/check/rules/appendix.hpp"
#include "tessera/check/rules/dropFixes.hpp"
#include "tessera/check/rules/followingText.hpp"
#include "tessera/check/rules/handling.hpp"
#include "tessera/check/rules/otherFailures.hpp"
#include "tessera/check/rules/strings.hpp"
#include "tessera/check/rules/taskFailures.hpp"
#include "tessera/check/rules/tasks.hpp"
#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/scan/RecordedFailures.hpp"
#include "tessera/check/scan/TaskWalk.hpp"

namespace tessera::check {
namespace {

using catalogue::CheckedFile;
using catalogue::Diagnostic;
using scan::RecordedFailure;

/// The failures of a file by the rule that explains them.
struct SortedFailures {
  explicit SortedFailures(std::vector<RecordedFailure> failures) {
    for (RecordedFailure& failure : failures) listOf(failure).push_back(std::move(failure));
  }

  std::vector<RecordedFailure>& listOf(const RecordedFailure& failure) {
    const bool isTask = failure.failureId == u"missing_task_marker_pair" ||
                        failure.failureId == u"overlapping_task_marker";
    if (isTask) return tasks;
    return failure.failureId == u"invalid_position_data" ? ranges : others;
  }

  std::vector<RecordedFailure> tasks;
  std::vector<RecordedFailure> ranges;
  std::vector<RecordedFailure> others;
};

void addSuspects(std::vector<suspects::Suspect>& suspects, std::vector<Diagnostic>& diagnostics) {
  for (suspects::Suspect& suspect : suspects) {
    if (!suspect.isExplained) diagnostics.push_back(std::move(suspect.diagnostic));
  }
}

}  // namespace

CheckedFile checkFile(std::string path, session::ParsedFile file,
                      const rules::IsAccepted& isAccepted) {
  CheckedFile checked;
  checked.path = std::move(path);
  const SortedFailures failures(scan::collectFailures(file.snippet));
  checked.lines =
      source::SourceLines(std::move(file.snippet.code), std::move(file.source.appendixLineText),
                          std::move(file.source.appendix));
  const scan::FileScan scan(checked.lines, file.source.appendixLine);
  rules::Findings findings;
  findings.suspects = suspects::findSuspects(scan);
  const scan::TaskWalk walk(scan);
  rules::checkFollowingText(scan, findings);
  rules::dropUncertainFixes(scan, walk, findings);
  rules::explainTaskFailures(scan, walk, failures.tasks, findings);
  rules::checkTasks(scan, walk, findings);
  rules::checkRanges(scan, failures.ranges, isAccepted, findings);
  rules::reportOtherFailures(scan, failures.others, findings);
  rules::checkAnchors(scan, walk, findings);
  rules::checkHandling(scan, isAccepted, findings);
  rules::checkStrings(scan, checked.path, findings);
  rules::checkAppendix(scan, walk, findings);
  addSuspects(findings.suspects.code, findings.diagnostics);
  addSuspects(findings.suspects.appendix, findings.diagnostics);
  checked.diagnostics = std::move(findings.diagnostics);
  rules::dropHarmfulFixes(scan, isAccepted, checked.diagnostics);
  for (Diagnostic& diagnostic : checked.diagnostics) scan.escaped.mapToFile(diagnostic);
  std::ranges::stable_sort(checked.diagnostics, {},
                           [](const Diagnostic& diagnostic) { return diagnostic.span.begin; });
  return checked;
}

}  // namespace tessera::check
