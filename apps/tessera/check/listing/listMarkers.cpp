#include "tessera/check/listing/listMarkers.hpp"

#include <algorithm>
#include <map>
#include <span>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/scan/HiddenRanges.hpp"
#include "tessera/check/scan/LineRanges.hpp"
#include "tessera/check/scan/RecordedFailures.hpp"
#include "tessera/check/scan/TaskWalk.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::check::listing {

using namespace scan;
using quenlith::syntax::Marker;

namespace {

using enum MarkerFate;

/// An element and an id.
using Name = std::pair<std::u16string_view, std::u16string_view>;

constexpr std::u16string_view kRangeFailure = u"invalid_position_data";

Name elementAndId(const FoundMarker& marker) {
  return {marker.parts.element, marker.id};
}

/// The anchors and failures of one line, as the document has them.
struct LineRecord {
  std::vector<std::u16string> anchors;
  /// The ids of the failures on markers with the same element and id, which may be many, and how
  /// many failures have each of these ids.
  using FailureCounts = std::map<std::u16string_view, std::size_t>;
  hashing::KeyedMap<Name, FailureCounts> failures;

  const FailureCounts& failuresOf(const FoundMarker& marker) const {
    static const FailureCounts kNone;
    const auto found = failures.find(elementAndId(marker));
    return found == failures.end() ? kNone : found->second;
  }
};

using LineRecords = std::unordered_map<std::uint64_t, LineRecord>;

LineRecords readDocument(const session::ParsedSnippet& snippet,
                         const std::vector<RecordedFailure>& failures) {
  LineRecords records;
  const auto& nodes = snippet.document->getChildren();
  session::LineTable::Cursor outcomes(snippet.lines);
  while (outcomes.advance()) {
    const auto line = outcomes.line();
    for (std::uint64_t i = 0; i < line.outcome.nodeCount; ++i) {
      const std::u16string_view anchor = nodes[line.firstNode + i]->getAnchorId();
      if (!anchor.empty()) records[line.number].anchors.emplace_back(anchor);
    }
  }
  for (const RecordedFailure& failure : failures) {
    LineRecord& record = records[failure.line];
    ++record.failures[{failure.element, failure.markerId}][failure.failureId];
  }
  return records;
}

ListedMarker makeListed(const FoundMarker& found) {
  return {.marker = Marker(std::u16string(found.text())),
          .span = found.span(),
          .range = found.range,
          .fates = {},
          .failureIds = {}};
}

/// The markers of one line, and what the document has for them. Borrows both.
class Line {
 public:
  Line(std::span<const FoundMarker> found, const LineRecord& record)
      : found(found), record(record), ranges(found) {
    for (const FoundMarker& marker : found) {
      if (marker.isOnAmbiguousLine && hasRange(marker)) ++rangeCounts[elementAndId(marker)];
    }
  }

  bool hasUsableRange(const FoundMarker& marker) const {
    if (!hasRange(marker)) return false;
    if (marker.isOnAmbiguousLine) {
      // The parser may have counted other positions.
      const auto& failures = record.failuresOf(marker);
      const auto failed = failures.find(kRangeFailure);
      if (failed == failures.end()) return true;
      if (failed->second >= rangeCounts.at(elementAndId(marker))) return false;
    }
    return ranges.problemOf(marker.range->first, marker.range->second) == RangeProblem::kNone;
  }

  const std::span<const FoundMarker> found;
  const LineRecord& record;

 private:
  static bool hasRange(const FoundMarker& marker) { return marker.isMarker() && marker.range; }

  LineRanges ranges;
  // How many markers of an ambiguous line have each name and a range.
  hashing::KeyedMap<Name, std::size_t> rangeCounts;
};

/// Finds what became of the markers of the code, line by line.
class CodeFates {
 public:
  CodeFates(const TaskWalk& walk, const LineRecords& records, const rules::IsAccepted& isAccepted)
      : records(records), isAccepted(isAccepted) {
    for (const Task& task : walk.tasks) {
      taskFates[task.open] = kTaskBegin;
      if (task.close != nullptr) taskFates[task.close] = kTaskEnd;
    }
    for (const IgnoredTaskMarker& ignored : walk.ignored) taskFates[ignored.marker] = kIgnored;
  }

  void addLine(std::span<const FoundMarker> found, std::vector<ListedMarker>& listed) {
    static const LineRecord kNothing;
    const auto record = records.find(found.front().line);
    const Line line(found, record == records.end() ? kNothing : record->second);
    const auto hidden = findHidden(line);
    for (const FoundMarker& marker : found) {
      if (marker.isMarker()) listed.push_back(list(marker, line, hidden.contains(&marker)));
    }
  }

 private:
  bool accepts(const FoundMarker& marker) const {
    return isAccepted(Marker(std::u16string(marker.text())));
  }

  bool isHandled(const FoundMarker& marker) const {
    return marker.isTask() || marker.isAnchor() || marker.parts.element == u"output" ||
           accepts(marker);
  }

  /// Returns the markers whose texts all belong to later ones.
  std::unordered_set<const FoundMarker*> findHidden(const Line& line) const {
    std::vector<const FoundMarker*> withText;
    for (const FoundMarker& marker : line.found) {
      if (line.hasUsableRange(marker) && isHandled(marker)) withText.push_back(&marker);
    }
    std::unordered_set<const FoundMarker*> hidden;
    for (const HiddenRange& range : findHiddenRanges(withText)) {
      if (range.isWhole) hidden.insert(range.marker);
    }
    return hidden;
  }

  ListedMarker list(const FoundMarker& marker, const Line& line, bool isHidden) const {
    ListedMarker listed = makeListed(marker);
    addFailures(marker, line, listed);
    if (!isHandled(marker)) {
      listed.fates.push_back(kText);
      return listed;
    }
    if (const auto task = taskFates.find(&marker); task != taskFates.end()) {
      listed.fates.push_back(task->second);
    }
    if (marker.isAnchor()) {
      const bool isSet = std::ranges::count(line.record.anchors, marker.id) != 0;
      listed.fates.push_back(isSet ? kAnchor : kUnsetAnchor);
    }
    if (line.hasUsableRange(marker)) {
      listed.fates.push_back(isHidden ? kHidden : accepts(marker) ? kNode : kDropped);
    }
    if (listed.fates.empty()) listed.fates.push_back(kHandled);
    return listed;
  }

  /// A failure names an element and an id, and is about all such markers of its line. One about
  /// ranges is about those whose range cannot be used.
  static void addFailures(const FoundMarker& marker, const Line& line, ListedMarker& listed) {
    for (const auto& [id, count] : line.record.failuresOf(marker)) {
      if (id == kRangeFailure && (!marker.range || line.hasUsableRange(marker))) continue;
      listed.failureIds.emplace_back(id);
    }
    if (!listed.failureIds.empty()) listed.fates.push_back(kFailure);
  }

  const LineRecords& records;
  const rules::IsAccepted& isAccepted;
  std::unordered_map<const FoundMarker*, MarkerFate> taskFates;
};

/// Finds what became of the markers of the appendix.
class EntryFates {
 public:
  explicit EntryFates(const std::vector<ListedMarker>& code) {
    for (const ListedMarker& listed : code) used.insert(keyOf(listed.marker));
  }

  void addLine(std::span<const FoundMarker> found, std::vector<ListedMarker>& listed) {
    bool isFirst = true;
    for (const FoundMarker& marker : found) {
      if (!marker.isMarker()) continue;
      listed.push_back(makeListed(marker));
      listed.back().fates.push_back(isFirst ? fateOf(listed.back().marker) : kIgnored);
      isFirst = false;
    }
  }

 private:
  /// An element has no '#'.
  static std::u16string keyOf(const Marker& marker) {
    return marker.getElement() + u'#' + marker.getId();
  }

  MarkerFate fateOf(const Marker& marker) {
    std::u16string key = keyOf(marker);
    const bool isUsed = used.contains(key);
    if (!known.insert(std::move(key)).second) return kDuplicateEntry;
    return isUsed ? kEntry : kUnusedEntry;
  }

  hashing::KeyedSet<std::u16string> used;
  hashing::KeyedSet<std::u16string> known;
};

/// Calls `takeLine` with what was found on each line.
template <typename TakeLine>
void forEachLine(const std::vector<FoundMarker>& found, TakeLine takeLine) {
  for (auto begin = found.begin(); begin != found.end();) {
    const auto end = std::find_if(begin, found.end(), [begin](const FoundMarker& other) {
      return other.line != begin->line;
    });
    takeLine(std::span<const FoundMarker>(begin, end));
    begin = end;
  }
}

}  // namespace

ListedFile listMarkers(std::string path, session::ParsedFile file,
                       const rules::IsAccepted& isAccepted) {
  ListedFile listed;
  listed.path = std::move(path);
  const std::vector<RecordedFailure> failures = collectFailures(file.snippet);
  const LineRecords records = readDocument(file.snippet, failures);
  listed.lines =
      source::SourceLines(std::move(file.snippet.code), std::move(file.source.appendixLineText),
                          std::move(file.source.appendix));
  const FileScan scan(listed.lines, file.source.appendixLine);
  const TaskWalk walk(scan);
  CodeFates code(walk, records, isAccepted);
  forEachLine(scan.code, [&](auto line) { code.addLine(line, listed.markers); });
  EntryFates entries(listed.markers);
  forEachLine(scan.appendix, [&](auto line) { entries.addLine(line, listed.markers); });
  for (ListedMarker& marker : listed.markers) marker.span = scan.escaped.inFile(marker.span);
  return listed;
}

}  // namespace tessera::check::listing
