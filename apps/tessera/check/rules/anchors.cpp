#include "tessera/check/rules/anchors.hpp"

#include <algorithm>
#include <span>
#include <string>
#include <unordered_set>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::check::rules {

using namespace scan;
namespace {

using namespace catalogue::forms;
using catalogue::Diagnostic;
using catalogue::DiagnosticKind;

class AnchorRule {
 public:
  AnchorRule(const TaskWalk& walk, Findings& findings) : findings(findings) {
    for (const Task& task : walk.tasks) openingLines.insert(task.open->line);
  }

  void checkLine(std::span<const FoundMarker> found) {
    const FoundMarker* const set = findSet(found);
    for (const FoundMarker& marker : found) {
      if (!marker.isAnchor()) continue;
      if (marker.id.empty()) {
        report(marker, DiagnosticKind::kAnchorWithoutId, 0, {});
      } else if (set == nullptr) {
        reportBesideTask(marker, found);
      } else if (set->id != marker.id) {
        report(marker, DiagnosticKind::kAnchorNotSet, kAnchorReplaced,
               {nameOf(marker), nameOf(*set)})
            .notes.push_back({set->span(), "this anchor is set"});
      } else {
        checkUnique(marker);
      }
    }
  }

 private:
  /// Returns the anchor that the parsers set on the line, or on the task that the line opens.
  const FoundMarker* findSet(std::span<const FoundMarker> found) const {
    const bool hasTask = std::ranges::any_of(found, &FoundMarker::isTask);
    if (hasTask) {
      const auto first = std::ranges::find_if(found, &FoundMarker::isAnchor);
      const bool isSet = openingLines.contains(found.front().line) && first != found.end();
      return isSet ? &*first : nullptr;
    }
    const FoundMarker* last = nullptr;
    for (const FoundMarker& marker : found) {
      if (marker.isAnchor() && !marker.id.empty()) last = &marker;
    }
    return last;
  }

  Diagnostic& report(const FoundMarker& marker, DiagnosticKind kind, std::size_t form,
                     std::initializer_list<std::string_view> arguments) {
    findings.diagnostics.push_back(catalogue::makeDiagnostic(kind, form, marker.span(), arguments));
    return findings.diagnostics.back();
  }

  void reportBesideTask(const FoundMarker& marker, std::span<const FoundMarker> found) {
    const auto task = std::ranges::find_if(found, &FoundMarker::isTask);
    report(marker, DiagnosticKind::kAnchorNotSet, kAnchorBesideTask, {nameOf(marker)})
        .notes.push_back({task->span(), "the task marker"});
  }

  /// All anchors with one id are one diagnostic, at the second of them.
  void checkUnique(const FoundMarker& marker) {
    Seen& before = seen[marker.id];
    if (before.first == nullptr) {
      before.first = &marker;
    } else if (before.diagnostic == kNone) {
      before.diagnostic = findings.diagnostics.size();
      report(marker, DiagnosticKind::kDuplicateAnchor, 0,
             {nameOf(marker), std::to_string(before.first->line)})
          .notes.push_back({before.first->span(), "the first anchor with this id"});
    } else {
      findings.diagnostics[before.diagnostic].notes.push_back(
          {marker.span(), "another anchor with this id"});
    }
  }

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  struct Seen {
    const FoundMarker* first = nullptr;
    std::size_t diagnostic = kNone;
  };

  Findings& findings;
  std::unordered_set<std::uint64_t> openingLines;
  hashing::KeyedMap<std::u16string_view, Seen> seen;
};

}  // namespace

void checkAnchors(const FileScan& scan, const TaskWalk& walk, Findings& findings) {
  AnchorRule rule(walk, findings);
  for (auto found = scan.code.begin(); found != scan.code.end();) {
    const std::uint64_t number = found->line;
    const auto lineEnd = std::find_if(found, scan.code.end(), [number](const FoundMarker& other) {
      return other.line != number;
    });
    rule.checkLine({found, lineEnd});
    found = lineEnd;
  }
}

}  // namespace tessera::check::rules
