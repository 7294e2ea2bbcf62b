#pragma once

#include <iosfwd>

#include "harness/Contest.hpp"
#include "names.hpp"

namespace bench {

/// Writes each aim with the measured figure and whether it is met. The floor must be valid.
void writeAims(std::ostream& out, const Contest& contest);

}  // namespace bench
