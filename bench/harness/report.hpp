#pragma once

#include <iosfwd>

#include "harness/Contest.hpp"

namespace bench {

/// Returns whether the floor and the peers that validate it took part.
bool hasFloor(const Contest& contest);

/// Returns whether the floor, which took part, is fast enough to be valid: pugixml takes at least
/// 1.9 times and cmark at least 13 times as long in the same run.
bool floorCounts(const Contest& contest);

/// Writes a table of the costs of every subject, and why there are no ratios when the floor is not
/// valid.
void writeMeasurements(std::ostream& out, const Contest& contest);

}  // namespace bench
