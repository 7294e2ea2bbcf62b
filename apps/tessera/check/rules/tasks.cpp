#include "tessera/check/rules/tasks.hpp"

#include <algorithm>
#include <string>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::check::rules {

using namespace scan;
namespace {

using namespace catalogue::forms;
using catalogue::Diagnostic;
using catalogue::DiagnosticKind;

bool isBlankText(std::u16string_view text) {
  return text.find_first_not_of(u" \t") == text.npos;
}

/// Returns whether a line contains nothing but blanks between position `begin` and its end, apart
/// from the text of markers.
bool isBlankBesideMarkers(const FileScan& scan, std::uint64_t number, std::uint64_t begin) {
  const std::u16string_view line = scan.line(number);
  std::uint64_t at = begin;
  for (const FoundMarker& found : scan.codeOfLine(number)) {
    if (!found.isMarker() || found.parts.position < at) continue;
    if (!isBlankText(line.substr(at, found.parts.position - at))) return false;
    at = found.end();
  }
  return isBlankText(line.substr(at));
}

bool isEmpty(const FileScan& scan, const Task& task) {
  for (std::uint64_t line = task.open->line; line <= task.close->line; ++line) {
    if (!isBlankBesideMarkers(scan, line, 0)) return false;
  }
  return true;
}

/// Returns whether markers of other tasks are in the task.
bool hasOverlap(const TaskWalk& walk, const Task& task) {
  const auto found =
      std::ranges::lower_bound(walk.overlaps, task.open->line, {},
                               [](const Overlap& overlap) { return overlap.open->line; });
  return found != walk.overlaps.end() && found->open == task.open;
}

Diagnostic& report(Findings& findings, DiagnosticKind kind, std::size_t form,
                   const FoundMarker& marker, std::initializer_list<std::string_view> arguments) {
  findings.diagnostics.push_back(catalogue::makeDiagnostic(kind, form, marker.span(), arguments));
  return findings.diagnostics.back();
}

/// Reports the markers of each id once.
void checkIgnored(const TaskWalk& walk, Findings& findings) {
  hashing::KeyedMap<std::u16string_view, std::size_t> reported;
  for (const IgnoredTaskMarker& ignored : walk.ignored) {
    if (findings.brokenTasks.contains(ignored.marker->id)) continue;
    const auto [known, isNew] = reported.emplace(ignored.marker->id, findings.diagnostics.size());
    if (!isNew) {
      findings.diagnostics[known->second].notes.push_back(
          {ignored.marker->span(), "this one, too"});
      continue;
    }
    Diagnostic& diagnostic = report(findings, DiagnosticKind::kIgnoredTaskMarker, 0,
                                    *ignored.marker, {nameOf(*ignored.marker)});
    diagnostic.notes.push_back({ignored.first->span(), "the first task marker of the line"});
  }
}

/// Says why a task does not end: its second marker is ignored.
void noteUnclosed(const TaskWalk& walk, Findings& findings) {
  for (const Task& task : walk.tasks) {
    if (task.close != nullptr || task.overlongEnd != 0) continue;
    for (Diagnostic& diagnostic : findings.diagnostics) {
      if (diagnostic.kind != DiagnosticKind::kIgnoredTaskMarker) continue;
      const auto& ids = walk.byId.at(task.open->id);
      const bool isOwn = std::ranges::any_of(ids, [&diagnostic](const FoundMarker* marker) {
        return marker->span() == diagnostic.span;
      });
      if (!isOwn) continue;
      diagnostic.notes.push_back(
          {task.open->span(), "the task " + nameOf(*task.open) + " begins here, and never ends"});
      return;
    }
  }
}

}  // namespace

void checkTasks(const FileScan& scan, const TaskWalk& walk, Findings& findings) {
  checkIgnored(walk, findings);
  noteUnclosed(walk, findings);
  for (const Task& task : walk.tasks) {
    const std::string name = nameOf(*task.open);
    if (task.overlongEnd != 0) {
      report(findings, DiagnosticKind::kTaskTooLong, 0, *task.open,
             {name, std::to_string(task.overlongEnd)});
    } else if (task.close == nullptr) {
      continue;
    } else if (!hasOverlap(walk, task) && isEmpty(scan, task)) {
      Diagnostic& diagnostic =
          report(findings, DiagnosticKind::kEmptyTask, kTaskWithoutText, *task.open, {name});
      diagnostic.notes.push_back({task.close->span(), "the task ends here"});
    } else if (task.dropsLine) {
      report(findings, DiagnosticKind::kEmptyTask, kTaskDropsLine, *task.open, {name});
    }
  }
}

}  // namespace tessera::check::rules
