#pragma once

#include <cstdint>
#include <vector>

#include "tessera/check/scan/FoundMarker.hpp"

namespace tessera::check::scan {

/// A range that loses text to a later marker of its line.
struct HiddenRange {
  const FoundMarker* marker = nullptr;
  const FoundMarker* later = nullptr;
  /// Nothing is left of the range.
  bool isWhole = false;
  /// The text that it loses.
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
};

/// Returns the ranges of which nothing is left, and those that a later range cuts off at one end. A
/// range that contains later ones is not among them. `markers` are those of one line in order, each
/// with a range. O(n log n).
std::vector<HiddenRange> findHiddenRanges(const std::vector<const FoundMarker*>& markers);

}  // namespace tessera::check::scan
