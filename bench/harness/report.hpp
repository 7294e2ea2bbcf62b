#pragma once

#include <iosfwd>

#include "harness/Contest.hpp"

namespace bench {

/// Tells whether the floor and those that it is judged by took part.
bool hasFloor(const Contest& contest);

/// Tells whether the floor, which took part, is as fast as a floor has to be: pugixml takes at
/// least 1.9 times and cmark at least 13 times as long in the same run.
bool floorCounts(const Contest& contest);

/// Writes what every subject took as a table, and why there are no ratios when the floor does
/// not count.
void writeMeasurements(std::ostream& out, const Contest& contest);

}  // namespace bench
