#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "tessera/check/scan/FoundMarker.hpp"

namespace tessera::check::scan {

/// Why a range cannot be used, in the order in which the reasons are looked for.
enum class RangeProblem : std::uint8_t { kNone, kReversed, kEmpty, kPastEnd, kTouches };

/// The markers of one line, with their ranges.
class LineRanges {
 public:
  /// Borrows `found`, all candidates of one line.
  explicit LineRanges(std::span<const FoundMarker> found);

  /// Returns why the parsers cannot use the range [`begin`, `end`); it may be that of any marker.
  RangeProblem problemOf(std::uint64_t begin, std::uint64_t end) const;

  /// Returns the marker that the range touches. For `kTouches` only.
  const FoundMarker& touchedBy(std::uint64_t begin, std::uint64_t end) const;

 private:
  const FoundMarker* lastBefore(std::uint64_t end) const;

  std::uint64_t lineLength = 0;
  // In ascending order.
  std::vector<const FoundMarker*> markers;
};

}  // namespace tessera::check::scan
