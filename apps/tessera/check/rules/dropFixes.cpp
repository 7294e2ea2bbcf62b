#include "tessera/check/rules/dropFixes.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "tessera/check/rules/settings.hpp"
#include "tessera/check/scan/FoundMarker.hpp"
#include "tessera/check/scan/LineRanges.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::check::rules {

using namespace scan;

namespace {

using catalogue::Diagnostic;
using catalogue::Edit;
using catalogue::Position;
using suspects::Suspect;

// Only so many fixes of a line are tried one by one.
constexpr std::size_t kMostTried = 16;

/// Returns the marker that the fix of `suspect` makes, which borrows from it; nothing without a
/// fix.
std::optional<FoundMarker> repairedMarker(const Suspect& suspect) {
  if (suspect.repaired.empty()) return std::nullopt;
  const auto candidates = quenlith::syntax::findMarkerCandidates(suspect.repaired);
  return makeFoundMarker(candidates.front(), 1, suspect.repaired);
}

/// Calls `isConfirmed` with the marker that the fix of each suspect makes.
template <class Predicate>
void keepConfirmed(std::vector<Suspect>& suspects, Predicate isConfirmed) {
  for (Suspect& suspect : suspects) {
    const auto marker = repairedMarker(suspect);
    if (marker && !isConfirmed(suspect, *marker)) suspect.diagnostic.fix.reset();
  }
}

/// Tells which tasks the fixes of task markers may make.
class PossibleTasks {
 public:
  PossibleTasks(const FileScan& scan, const TaskWalk& walk, const std::vector<Suspect>& suspects)
      : walk(walk) {
    for (const FoundMarker& found : scan.code) {
      if (found.isTask() && !found.isEscapedTask) lines.push_back(found.line);
    }
    for (const Suspect& suspect : suspects) {
      const auto marker = repairedMarker(suspect);
      if (marker && marker->parts.element == u"task") ++repairs[marker->id];
    }
  }

  /// Returns whether the marker, on line `line`, makes a pair with one that has no partner yet, and
  /// which no other fix pairs, and no other task or task marker is between the two or around them.
  bool isPair(const FoundMarker& marker, std::uint64_t line) const {
    const auto same = walk.byId.find(marker.id);
    if (same == walk.byId.end() || same->second.size() != 1 || repairs.at(marker.id) != 1)
      return false;
    const std::uint64_t other = same->second.front()->line;
    const auto [first, last] = std::minmax(line, other);
    const auto begin = std::ranges::lower_bound(lines, first);
    // Only the partner itself.
    return std::upper_bound(begin, lines.end(), last) - begin == 1 && !isTaskOpen(last);
  }

 private:
  /// Returns whether a task that begins before the end of line `line` is still open there.
  bool isTaskOpen(std::uint64_t line) const {
    const auto after = std::ranges::upper_bound(walk.tasks, line, {},
                                                [](const Task& task) { return task.open->line; });
    if (after == walk.tasks.begin()) return false;
    const Task& task = *std::prev(after);
    return task.close == nullptr || task.close->line >= line;
  }

  const TaskWalk& walk;
  // Of the task markers, in order.
  std::vector<std::uint64_t> lines;
  hashing::KeyedMap<std::u16string, std::size_t> repairs;
};

/// Returns the lines that the edits of a fix touch.
std::pair<std::uint64_t, std::uint64_t> linesOf(const Diagnostic& diagnostic) {
  const std::vector<Edit>& edits = diagnostic.fix->edits;
  return {edits.front().span.begin.line, edits.back().span.end.line};
}

/// Consecutive lines of code, and the fixes that touch them and no other line.
class FixedLines {
 public:
  FixedLines(const FileScan& scan, const IsAccepted& isAccepted, std::uint64_t first)
      : scan(scan), isAccepted(isAccepted), first(first), last(first) {}

  std::uint64_t lastLine() const noexcept { return last; }

  void add(Diagnostic& diagnostic) {
    last = std::max(last, linesOf(diagnostic).second);
    fixed.push_back(&diagnostic);
  }

  void dropHarmful() {
    joinLines();
    if (!mayHaveRange()) return;
    const std::size_t before = countUnusable(text);
    const bool isTried = fixed.size() <= kMostTried;
    if (isTried) {
      std::erase_if(fixed, [&](Diagnostic* diagnostic) {
        return dropIf(countAfter({diagnostic}) > before, *diagnostic);
      });
    }
    if (fixed.size() < 2 || countAfter(fixed) <= before) return;
    // Once the first one is made, another check tells whether the others may be.
    for (Diagnostic* diagnostic : fixed) {
      const bool isKept =
          diagnostic == fixed.front() && (isTried || countAfter({diagnostic}) <= before);
      dropIf(!isKept, *diagnostic);
    }
  }

 private:
  /// Most lines have none, before and after their fixes.
  bool mayHaveRange() const {
    return text.find(u'[') != text.npos ||
           std::ranges::any_of(fixed, [](const Diagnostic* diagnostic) {
             return std::ranges::any_of(diagnostic->fix->edits, [](const Edit& edit) {
               return edit.text.find('[') != edit.text.npos;
             });
           });
  }

  static bool dropIf(bool isDropped, Diagnostic& diagnostic) {
    if (isDropped) diagnostic.fix.reset();
    return isDropped;
  }

  void joinLines() {
    for (std::uint64_t number = first; number <= last; ++number) {
      begins.push_back(text.size());
      text.append(scan.line(number)).append(1, u'\n');
    }
    text.pop_back();
  }

  std::size_t offsetOf(const Position& position) const {
    return begins[position.line - first] + static_cast<std::size_t>(position.unit);
  }

  /// Returns how many ranges would be unusable after the fixes of `diagnostics`.
  std::size_t countAfter(const std::vector<Diagnostic*>& diagnostics) const {
    std::vector<const Edit*> edits;
    for (const Diagnostic* diagnostic : diagnostics) {
      for (const Edit& edit : diagnostic->fix->edits) edits.push_back(&edit);
    }
    std::ranges::stable_sort(edits, {}, [](const Edit* edit) { return edit->span; });
    std::u16string result;
    std::size_t at = 0;
    for (const Edit* edit : edits) {
      const std::size_t begin = offsetOf(edit->span.begin);
      // It is left out, like a fix that overlaps another.
      if (begin < at) continue;
      result.append(text, at, begin - at).append(fl::i18n::utf8_to_ustring(edit->text));
      at = offsetOf(edit->span.end);
    }
    return countUnusable(result.append(text, at));
  }

  /// Returns for how many markers of `lines` the parsers would record that the range is unusable.
  std::size_t countUnusable(std::u16string_view lines) const {
    std::size_t count = 0;
    while (true) {
      const std::size_t length = std::min(lines.find(u'\n'), lines.size());
      count += countUnusableOfLine(lines.substr(0, length));
      if (length == lines.size()) return count;
      lines.remove_prefix(length + 1);
    }
  }

  std::size_t countUnusableOfLine(std::u16string_view line) const {
    std::vector<FoundMarker> found;
    for (const auto& candidate : quenlith::syntax::findMarkerCandidates(line)) {
      found.push_back(makeFoundMarker(candidate, first, line));
    }
    const LineRanges ranges(found);
    return static_cast<std::size_t>(std::ranges::count_if(found, [&](const FoundMarker& marker) {
      return marker.isMarker() && marker.range &&
             ranges.problemOf(marker.range->first, marker.range->second) != RangeProblem::kNone &&
             isHandled(marker);
    }));
  }

  bool isHandled(const FoundMarker& marker) const {
    return marker.parts.element == u"output" || marker.isTask() || marker.isAnchor() ||
           isAccepted(quenlith::syntax::Marker(std::u16string(marker.text())));
  }

  const FileScan& scan;
  const IsAccepted& isAccepted;
  std::uint64_t first;
  std::uint64_t last;
  std::vector<Diagnostic*> fixed;
  // The lines, joined by line feeds, and where each begins.
  std::u16string text;
  std::vector<std::size_t> begins;
};

bool isFixOfCode(const FileScan& scan, const Diagnostic& diagnostic) {
  if (!diagnostic.fix || diagnostic.fix->edits.empty()) return false;
  const std::uint64_t end = scan.appendixLine == 0 ? scan.lines.count() + 1 : scan.appendixLine;
  return linesOf(diagnostic).second < end;
}

}  // namespace

void dropUncertainFixes(const FileScan& scan, const TaskWalk& walk, Findings& findings) {
  const PossibleTasks tasks(scan, walk, findings.suspects.code);
  keepConfirmed(findings.suspects.code, [&](const Suspect& suspect, const FoundMarker& marker) {
    const std::u16string_view element = marker.parts.element;
    if (element == u"task") return tasks.isPair(marker, suspect.diagnostic.span.begin.line);
    if (suspect.isKeyCompleted) return false;
    if (!suspect.isCompleted) return true;
    return element == u"text" ? marker.isAnchor() && !marker.id.empty() : marker.range.has_value();
  });
  hashing::KeyedSet<std::u16string_view> entries;
  for (const FoundMarker& entry : scan.appendix) {
    if (entry.isTask()) entries.insert(entry.id);
  }
  keepConfirmed(findings.suspects.appendix, [&](const Suspect& suspect, const FoundMarker& marker) {
    if (suspect.isKeyCompleted && !hasKnownSettings(marker)) return false;
    if (marker.parts.element != u"task") return true;
    return walk.byId.contains(marker.id) && !entries.contains(marker.id);
  });
}

void dropHarmfulFixes(const FileScan& scan, const IsAccepted& isAccepted,
                      std::vector<Diagnostic>& diagnostics) {
  std::vector<Diagnostic*> fixed;
  for (Diagnostic& diagnostic : diagnostics) {
    if (isFixOfCode(scan, diagnostic)) fixed.push_back(&diagnostic);
  }
  std::ranges::stable_sort(
      fixed, {}, [](const Diagnostic* diagnostic) { return diagnostic->fix->edits.front().span; });
  for (auto next = fixed.begin(); next != fixed.end();) {
    FixedLines lines(scan, isAccepted, linesOf(**next).first);
    for (; next != fixed.end() && linesOf(**next).first <= lines.lastLine(); ++next) {
      lines.add(**next);
    }
    lines.dropHarmful();
  }
}

}  // namespace tessera::check::rules
