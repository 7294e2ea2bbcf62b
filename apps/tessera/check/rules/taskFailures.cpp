#include "tessera/check/rules/taskFailures.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/SimilarNames.hpp"
#include "tessera/check/scan/markerText.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::check::rules {

using namespace scan;
namespace {

using namespace catalogue::forms;
using catalogue::Diagnostic;
using catalogue::DiagnosticKind;
using suspects::Suspect;
using Markers = std::vector<const FoundMarker*>;

// All of these are compared with an id.
constexpr std::size_t kMaxCutOff = 4;

/// The failures of the task markers of one id.
struct Group {
  std::u16string_view id;
  /// Of the first failure. An overlap comes first, because it explains the others.
  std::uint64_t line = 0;
  bool isOverlap = false;
  /// The markers with the id; empty if they are not known.
  const Markers* markers = nullptr;
  /// The diagnostic of another group contains this one.
  bool isMerged = false;
};

void addNote(Diagnostic& diagnostic, const FoundMarker& marker, std::string message) {
  diagnostic.notes.push_back({marker.span(), std::move(message)});
}

/// Adds the markers other than `primary` as notes.
void addMarkers(Diagnostic& diagnostic, const Markers& markers, const FoundMarker* primary,
                const std::string& message) {
  for (const FoundMarker* marker : markers) {
    if (marker != primary) addNote(diagnostic, *marker, message);
  }
}

class TaskFailureRule {
 public:
  TaskFailureRule(const FileScan& scan, const TaskWalk& walk, Findings& findings)
      : scan(scan), walk(walk), findings(findings) {
    for (const Overlap& overlap : walk.overlaps) overlaps.emplace(overlap.marker->id, &overlap);
    for (const Task& task : walk.tasks) tasksByOpening.emplace(task.open, &task);
    for (const FoundMarker& found : scan.appendix) {
      if (found.isTask()) appendixMarkers[found.id].push_back(&found);
    }
    indexSuspects();
  }

  void explain(std::span<const RecordedFailure> failures) {
    makeGroups(failures);
    for (std::size_t i = 0; i < groups.size(); ++i) {
      const bool isPossible = isSingle(groups[i]) || isTooMany(groups[i]);
      if (isPossible && groups[i].id.size() >= kMinSimilar) similarGroups.add(groups[i].id, i);
    }
    explainByAppendixLine();
    explainByEarlyEnd();
    // A single marker may be the misspelt one of several with another id.
    for (Group& group : groups) {
      if (!group.isMerged && isSingle(group)) explainSingle(group);
    }
    for (Group& group : groups) {
      if (!group.isMerged && !isSingle(group)) explainOther(group);
    }
  }

 private:
  /// Without the line that starts the appendix, all entries are markers: that is one cause. The
  /// line may be damaged or gone.
  void explainByAppendixLine() {
    if (scan.appendixLine != 0) return;
    auto& suspects = findings.suspects.code;
    const auto line = std::ranges::find(suspects, u"appendix", &Suspect::element);
    const bool isDamaged = line != suspects.end();
    const std::uint64_t number = isDamaged ? line->diagnostic.span.begin.line : 0;
    Diagnostic* diagnostic = nullptr;
    for (Group& group : groups) {
      if (!isTooMany(group) || !isPairWithEntry(*group.markers, number)) continue;
      group.isMerged = true;
      findings.brokenTasks.insert(std::u16string(group.id));
      if (diagnostic == nullptr) {
        diagnostic = &reportTooMany(group);
        if (isDamaged) explainBy(*line, *diagnostic);
        if (!isDamaged)
          addNote(*diagnostic, *group.markers->back(),
                  "this one is an entry, but no line before it starts the appendix");
      } else {
        addNote(*diagnostic, *group.markers->back(), "this entry is a third marker, too");
      }
    }
  }

  /// Returns whether `markers` are a pair and, in line `number` or below, their entry.
  static bool isPairWithEntry(const Markers& markers, std::uint64_t number) {
    const auto hasData = [](const FoundMarker* marker) { return !marker->parts.data.empty(); };
    return markers.size() == 3 && markers.back()->line >= number && hasData(markers.back()) &&
           std::none_of(markers.begin(), markers.end() - 1, hasData);
  }

  /// A marker whose ">" came too early has another id than its partner: neither of them is a pair.
  void explainByEarlyEnd() {
    hashing::KeyedMap<std::u16string_view, std::size_t> singles;
    SimilarNames similar;
    hashing::KeyedSet<std::u16string_view> takenIds;
    for (const Suspect& suspect : findings.suspects.code) {
      if (suspect.takenId) takenIds.insert(*suspect.takenId);
    }
    for (std::size_t i = 0; i < groups.size(); ++i) {
      if (!isSingle(groups[i])) continue;
      singles.emplace(groups[i].id, i);
      // The id that was meant resembles the shorter one, too.
      const bool isTaken = takenIds.contains(groups[i].id);
      if (!isTaken && groups[i].id.size() >= kMinSimilar) similar.add(groups[i].id, i);
    }
    for (Suspect& suspect : findings.suspects.code) {
      if (!suspect.takenId || suspect.ids.empty() || suspect.element != u"task") continue;
      const auto taken = singles.find(*suspect.takenId);
      const auto same = singles.find(suspect.ids.front());
      const std::optional<std::size_t> meant =
          same == singles.end() ? similar.find(suspect.ids.front()) : std::optional(same->second);
      if (taken == singles.end() || !meant || groups[*meant].isMerged || *meant == taken->second)
        continue;
      groups[*meant].isMerged = true;
      groups[taken->second].isMerged = true;
      findings.brokenTasks.insert(*suspect.takenId);
      explainBy(suspect, reportMissing(groups[*meant], kPairDamaged));
    }
  }

  static bool isSingle(const Group& group) {
    return !group.isOverlap && group.markers != nullptr && group.markers->size() == 1;
  }

  static bool isTooMany(const Group& group) {
    return !group.isOverlap && group.markers != nullptr && group.markers->size() > 2;
  }

  void indexSuspects() {
    auto& suspects = findings.suspects.code;
    for (std::size_t i = 0; i < suspects.size(); ++i) {
      if (suspects[i].element != u"task" || suspects[i].takenId) continue;
      if (suspects[i].isCutOff && cutOff.size() < kMaxCutOff) cutOff.push_back(i);
      for (const std::u16string& id : suspects[i].ids) {
        suspectsById[id].push_back(i);
        if (id.size() >= kMinSimilar) similarSuspects.add(id, i);
      }
    }
  }

  void makeGroups(std::span<const RecordedFailure> failures) {
    hashing::KeyedMap<std::u16string_view, std::size_t> byId;
    for (const RecordedFailure& failure : failures) {
      const bool isOverlap = failure.failureId == u"overlapping_task_marker";
      const auto [known, isNew] = byId.emplace(failure.markerId, groups.size());
      if (isNew) {
        const auto markers = walk.byId.find(failure.markerId);
        groups.push_back({failure.markerId, failure.line, isOverlap,
                          markers == walk.byId.end() ? nullptr : &markers->second, false});
      } else if (isOverlap && !groups[known->second].isOverlap) {
        groups[known->second].isOverlap = true;
        groups[known->second].line = failure.line;
      }
    }
  }

  /// Returns the marker that the first failure of the group is about, or null.
  static const FoundMarker* markerOf(const Group& group) {
    if (group.markers == nullptr) return nullptr;
    const auto found = std::ranges::find(*group.markers, group.line, &FoundMarker::line);
    return found == group.markers->end() ? nullptr : *found;
  }

  Diagnostic& report(const Group& group, DiagnosticKind kind, std::size_t form,
                     std::initializer_list<std::string_view> arguments) {
    findings.brokenTasks.insert(std::u16string(group.id));
    const FoundMarker* const marker = markerOf(group);
    const catalogue::Span span =
        marker != nullptr ? marker->span()
                          : catalogue::spanOf(group.line, 0, scan.line(group.line).size());
    findings.diagnostics.push_back(catalogue::makeDiagnostic(kind, form, span, arguments));
    return findings.diagnostics.back();
  }

  Diagnostic& reportMissing(const Group& group, MissingTaskMarkerPair form,
                            std::string_view argument = {}) {
    const std::string name = group.id.empty() ? "without an id" : quoted(group.id);
    return report(group, DiagnosticKind::kMissingTaskMarkerPair, form, {name, argument});
  }

  /// Whoever writes "<@task:fit>" may mean an id.
  Diagnostic& reportTooMany(const Group& group) {
    const std::string count = std::to_string(group.markers->size());
    if (!group.id.empty()) return reportMissing(group, kPairTooMany, count);
    const bool hasType = std::ranges::any_of(
        *group.markers, [](const FoundMarker* marker) { return !marker->parts.type.empty(); });
    const std::string_view hint = hasType ? ", and the text after \":\" is a type" : "";
    return report(group, DiagnosticKind::kMissingTaskMarkerPair, kPairWithoutId, {hint, count});
  }

  void explainSingle(Group& group) {
    if (Suspect* const suspect = findSuspect(group.id)) {
      return explainBy(*suspect, reportMissing(group, kPairDamaged));
    }
    if (explainByAppendix(group)) return;
    if (Group* const other = findSimilar(group)) return explainBySimilar(group, *other);
    reportMissing(group, kPairAlone).unpairedTask.emplace(group.id);
  }

  /// A marker may be cut off in its id.
  Suspect* findCutOff(std::u16string_view id) {
    for (const std::size_t index : cutOff) {
      Suspect& suspect = findings.suspects.code[index];
      if (!suspect.isExplained && (suspect.ids.empty() || id.starts_with(suspect.ids.front())))
        return &suspect;
    }
    return nullptr;
  }

  Suspect* findSuspect(std::u16string_view id) {
    auto& suspects = findings.suspects.code;
    const auto same = suspectsById.find(id);
    if (same != suspectsById.end()) {
      for (const std::size_t index : same->second) {
        if (!suspects[index].isExplained) return &suspects[index];
      }
    }
    const auto similar = id.size() < kMinSimilar ? std::nullopt : similarSuspects.find(id);
    if (similar && !suspects[*similar].isExplained) return &suspects[*similar];
    return findCutOff(id);
  }

  /// A marker without data in the appendix is not an entry, and one of two with data is too much.
  bool explainByAppendix(const Group& group) {
    const auto found = appendixMarkers.find(group.id);
    if (found == appendixMarkers.end()) return false;
    const Markers& markers = found->second;
    const auto bare = std::ranges::find_if(
        markers, [](const FoundMarker* marker) { return marker->parts.data.empty(); });
    if (bare == markers.end() && markers.size() < 2) return false;
    const FoundMarker& partner = bare == markers.end() ? *markers.back() : **bare;
    addNote(reportMissing(group, kPairInAppendix), partner,
            "this marker is after line " + std::to_string(scan.appendixLine) +
                ", which starts the appendix");
    findings.reportedLines.insert(partner.line);
    return true;
  }

  Group* findSimilar(const Group& group) {
    if (group.id.size() < kMinSimilar) return nullptr;
    const auto similar = similarGroups.find(group.id);
    if (!similar || groups[*similar].isMerged) return nullptr;
    return &groups[*similar];
  }

  void explainBySimilar(Group& group, Group& other) {
    group.isMerged = true;
    other.isMerged = true;
    findings.brokenTasks.insert(std::u16string(other.id));
    Diagnostic& diagnostic = reportMissing(group, kPairSimilar, quoted(other.id));
    if (isTooMany(other)) {
      addMarkers(diagnostic, *other.markers, nullptr,
                 "one of " + std::to_string(other.markers->size()) + " markers with the id " +
                     quoted(other.id));
    } else {
      addMarkers(diagnostic, *other.markers, nullptr, "this marker has no partner either");
    }
  }

  void explainOther(const Group& group) {
    if (group.isOverlap) return explainOverlap(group);
    if (!isTooMany(group)) {
      reportMissing(group, kPairUnexplained);
      return;
    }
    addMarkers(reportTooMany(group), *group.markers, markerOf(group),
               group.id.empty() ? "another marker without an id" : "another marker with this id");
  }

  void explainOverlap(const Group& group) {
    const std::string name = group.id.empty() ? "without an id" : quoted(group.id);
    const auto found = overlaps.find(group.id);
    if (found == overlaps.end()) {
      report(group, DiagnosticKind::kOverlappingTaskMarker, kOverlapUnexplained, {name});
      return;
    }
    const FoundMarker& open = *found->second->open;
    Diagnostic& diagnostic = report(group, DiagnosticKind::kOverlappingTaskMarker,
                                    kOverlapsOpenTask, {name, nameOf(open)});
    addNote(diagnostic, open, "the task " + nameOf(open) + " begins here");
    const auto task = tasksByOpening.find(&open);
    if (task != tasksByOpening.end() && task->second->close != nullptr) {
      addNote(diagnostic, *task->second->close, "and ends here");
    }
    addMarkers(diagnostic, *group.markers, markerOf(group), "the other marker of the task " + name);
  }

  const FileScan& scan;
  const TaskWalk& walk;
  Findings& findings;
  std::vector<Group> groups;
  SimilarNames similarGroups;
  hashing::KeyedMap<std::u16string, std::vector<std::size_t>> suspectsById;
  SimilarNames similarSuspects;
  // The first few suspects whose line ends inside the marker.
  std::vector<std::size_t> cutOff;
  hashing::KeyedMap<std::u16string_view, const Overlap*> overlaps;
  std::unordered_map<const FoundMarker*, const Task*> tasksByOpening;
  hashing::KeyedMap<std::u16string_view, Markers> appendixMarkers;
};

}  // namespace

void explainTaskFailures(const FileScan& scan, const TaskWalk& walk,
                         std::span<const RecordedFailure> failures, Findings& findings) {
  TaskFailureRule(scan, walk, findings).explain(failures);
}

}  // namespace tessera::check::rules
