#include "tessera/check/rules/ranges.hpp"

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/CharacterBreaks.hpp"
#include "tessera/check/scan/HiddenRanges.hpp"
#include "tessera/check/scan/LineRanges.hpp"
#include "tessera/check/scan/markerText.hpp"
#include "tessera/hashing/KeyedMap.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::check::rules {

using namespace scan;
namespace {

using namespace catalogue::forms;
using catalogue::Diagnostic;
using catalogue::DiagnosticKind;
using quenlith::syntax::Marker;

bool isBlankUnit(char16_t unit) {
  return unit == u' ' || unit == u'\t' || unit == 0xA0 || unit == 0x3000 ||
         (unit >= 0x2000 && unit <= 0x200A);
}

std::string describeLength(std::u16string_view line) {
  const std::uint64_t characters = source::countCharacters(line);
  const std::string units = std::to_string(line.size());
  if (characters == line.size()) return units + (characters == 1 ? " character" : " characters");
  return units + " positions (" + std::to_string(characters) + " characters)";
}

/// Checks the ranges of one line.
class LineCheck {
 public:
  LineCheck(std::span<const FoundMarker> found, const IsAccepted& isAccepted, Findings& findings)
      : found(found),
        line(found.front().lineText),
        ranges(found),
        isAccepted(isAccepted),
        findings(findings) {}

  /// Explains the failure about the next marker with this element and id whose range cannot be
  /// used. Returns false if there is none.
  bool explain(const RecordedFailure& failure) {
    if (unusable.empty()) findUnusable();
    const auto known = unusable.find({failure.element, failure.markerId});
    if (known == unusable.end() || known->second.empty()) return false;
    const FoundMarker& marker = *known->second.front();
    known->second.pop_front();
    reportUnusable(marker, ranges.problemOf(marker.range->first, marker.range->second));
    return true;
  }

  void checkUsable() {
    std::vector<const FoundMarker*> usable;
    for (const FoundMarker& marker : found) {
      if (!marker.isMarker() || !marker.range) continue;
      const auto [begin, end] = *marker.range;
      if (ranges.problemOf(begin, end) != RangeProblem::kNone) continue;
      const bool accepted = isAccepted(Marker(std::u16string(marker.text())));
      if (!accepted && !isHandledAnyway(marker)) continue;
      usable.push_back(&marker);
      checkText(marker, accepted);
    }
    checkHidden(usable);
  }

 private:
  using enum DiagnosticKind;

  /// The parsers use the range of such a marker also if no parser takes its text.
  static bool isHandledAnyway(const FoundMarker& marker) {
    return marker.parts.element == u"output" || marker.isTask() || marker.isAnchor();
  }

  std::string nameOf(const FoundMarker& marker) const { return plainText(marker.parts.range); }

  Diagnostic& report(const FoundMarker& marker, DiagnosticKind kind, std::size_t form,
                     std::initializer_list<std::string_view> arguments) {
    findings.diagnostics.push_back(
        catalogue::makeDiagnostic(kind, form, marker.spanOf(marker.parts.range), arguments));
    return findings.diagnostics.back();
  }

  void findUnusable() {
    for (const FoundMarker& marker : found) {
      if (!marker.isMarker() || !marker.range) continue;
      const auto [begin, end] = *marker.range;
      if (ranges.problemOf(begin, end) == RangeProblem::kNone) continue;
      unusable[{marker.parts.element, marker.id}].push_back(&marker);
    }
  }

  void reportUnusable(const FoundMarker& marker, RangeProblem problem) {
    const std::string range = nameOf(marker);
    switch (problem) {
      case RangeProblem::kReversed:
        report(marker, kInvalidPositionData, kRangeReversed, {range});
        return;
      case RangeProblem::kEmpty:
        report(marker, kInvalidPositionData, kRangeEmpty, {range});
        return;
      case RangeProblem::kPastEnd:
        report(marker, kInvalidPositionData, kRangePastEnd, {range, lineLength()});
        return;
      default:
        return reportTouching(marker);
    }
  }

  /// Counted once: a line may have many ranges.
  const std::string& lineLength() {
    if (length.empty()) length = describeLength(line);
    return length;
  }

  void reportTouching(const FoundMarker& marker) {
    const auto [begin, end] = *marker.range;
    const FoundMarker& touched = ranges.touchedBy(begin, end);
    if (&touched == &marker) {
      report(marker, kInvalidPositionData, kRangeTouchesOwnMarker,
             {nameOf(marker), std::to_string(marker.parts.position)});
      return;
    }
    report(marker, kInvalidPositionData, kRangeTouchesMarker, {nameOf(marker)})
        .notes.push_back({touched.span(), "this marker takes the positions " +
                                              std::to_string(touched.parts.position) + " to " +
                                              std::to_string(touched.end())});
  }

  void checkText(const FoundMarker& marker, bool accepted) {
    const auto [begin, end] = *marker.range;
    const std::u16string_view text = line.substr(begin, end - begin);
    if (std::ranges::all_of(text, isBlankUnit)) {
      report(marker, kBlankRange, 0, {nameOf(marker)});
      return;
    }
    if (!accepted) {
      report(marker, kDroppedText, 0,
             {nameOf(marker), quoted(text), plainText(marker.parts.element)});
    }
    if (!checkBreak(marker, begin)) checkBreak(marker, end);
  }

  /// Reports a boundary of the range that is inside a character; returns whether it is.
  bool checkBreak(const FoundMarker& marker, std::uint64_t at) {
    if (breaks.isBreak(line, at)) return false;
    const auto [begin, end] = breaks.characterAround(line, at);
    const std::u16string_view character = line.substr(begin, end - begin);
    const std::string meant = widened(marker, begin, end);
    if (end - begin == 2 && at == begin + 1 && (line[at] & 0xFC00) == 0xDC00) {
      report(marker, kSplitCharacter, kSplitsPair,
             {nameOf(marker), quoted(character), std::to_string(begin), std::to_string(begin + 1),
              meant});
    } else {
      report(
          marker, kSplitCharacter, kSplitsCombined,
          {nameOf(marker), quoted(character), std::to_string(begin), std::to_string(end), meant});
    }
    return true;
  }

  /// Returns the range of the marker with the whole character [`begin`, `end`) in it.
  static std::string widened(const FoundMarker& marker, std::uint64_t begin, std::uint64_t end) {
    return '[' + std::to_string(std::min(begin, marker.range->first)) + ',' +
           std::to_string(std::max(end, marker.range->second)) + ']';
  }

  static catalogue::forms::HiddenRange formOf(const scan::HiddenRange& hidden) {
    if (!hidden.isWhole) return kRangePartlyHidden;
    const auto [begin, end] = *hidden.later->range;
    return begin <= hidden.begin && hidden.end <= end ? kRangeHidden : kRangeHiddenBySeveral;
  }

  void checkHidden(const std::vector<const FoundMarker*>& usable) {
    for (const scan::HiddenRange& hidden : findHiddenRanges(usable)) {
      const std::string later = plainText(hidden.later->parts.range);
      const std::string lost = quoted(line.substr(hidden.begin, hidden.end - hidden.begin));
      report(*hidden.marker, kHiddenRange, formOf(hidden), {nameOf(*hidden.marker), later, lost})
          .notes.push_back({hidden.later->spanOf(hidden.later->parts.range), "a later range"});
    }
  }

  std::span<const FoundMarker> found;
  std::u16string_view line;
  LineRanges ranges;
  const IsAccepted& isAccepted;
  Findings& findings;
  CharacterBreaks breaks;
  // Empty until it is asked for.
  std::string length;
  // The markers whose ranges cannot be used, by element and id; each is removed when it is
  // explained.
  hashing::KeyedMap<std::pair<std::u16string_view, std::u16string_view>,
                    std::deque<const FoundMarker*>>
      unusable;
};

void reportUnexplained(const FileScan& scan, const RecordedFailure& failure, Findings& findings) {
  const std::string id = failure.markerId.empty() ? "without an id" : quoted(failure.markerId);
  findings.diagnostics.push_back(
      catalogue::makeDiagnostic(DiagnosticKind::kInvalidPositionData, kRangeUnexplained,
                                catalogue::spanOf(failure.line, 0, scan.line(failure.line).size()),
                                {plainText(failure.element), id}));
}

}  // namespace

void checkRanges(const FileScan& scan, std::span<const RecordedFailure> failures,
                 const IsAccepted& isAccepted, Findings& findings) {
  auto failure = failures.begin();
  auto found = scan.code.begin();
  while (found != scan.code.end()) {
    const std::uint64_t number = found->line;
    const auto lineEnd = std::find_if(found, scan.code.end(), [number](const FoundMarker& other) {
      return other.line != number;
    });
    for (; failure != failures.end() && failure->line < number; ++failure) {
      reportUnexplained(scan, *failure, findings);
    }
    LineCheck check({found, lineEnd}, isAccepted, findings);
    const bool isAmbiguous = found->isOnAmbiguousLine;
    for (; failure != failures.end() && failure->line == number; ++failure) {
      if (isAmbiguous || !check.explain(*failure)) reportUnexplained(scan, *failure, findings);
    }
    if (!isAmbiguous) check.checkUsable();
    found = lineEnd;
  }
  for (; failure != failures.end(); ++failure) reportUnexplained(scan, *failure, findings);
}

}  // namespace tessera::check::rules
