#include "tessera/check/scan/LineRanges.hpp"

#include <algorithm>

namespace tessera::check::scan {

LineRanges::LineRanges(std::span<const FoundMarker> found) {
  if (!found.empty()) lineLength = found.front().lineText.size();
  for (const FoundMarker& marker : found) {
    if (marker.isMarker()) markers.push_back(&marker);
  }
}

// If a range touches any marker, it touches the last one that begins before the end of the range.
const FoundMarker* LineRanges::lastBefore(std::uint64_t end) const {
  const auto beyond = std::partition_point(
      markers.begin(), markers.end(),
      [end](const FoundMarker* marker) { return marker->parts.position < end; });
  return beyond == markers.begin() ? nullptr : *(beyond - 1);
}

RangeProblem LineRanges::problemOf(std::uint64_t begin, std::uint64_t end) const {
  if (end < begin) return RangeProblem::kReversed;
  if (end == begin) return RangeProblem::kEmpty;
  if (end > lineLength) return RangeProblem::kPastEnd;
  const FoundMarker* const last = lastBefore(end);
  return last != nullptr && begin <= last->end() ? RangeProblem::kTouches : RangeProblem::kNone;
}

const FoundMarker& LineRanges::touchedBy(std::uint64_t begin, std::uint64_t end) const {
  // The first one touched explains most: a range that is too long reaches the markers in order.
  const auto first =
      std::partition_point(markers.begin(), markers.end(),
                           [begin](const FoundMarker* marker) { return marker->end() < begin; });
  return first == markers.end() ? *lastBefore(end) : **first;
}

}  // namespace tessera::check::scan
