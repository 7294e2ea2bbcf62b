#pragma once

#include <iosfwd>

#include "harness/Contest.hpp"
#include "names.hpp"

namespace bench {

/// Writes each aim with what was measured and whether that meets it. The floor must count.
void writeAims(std::ostream& out, const Contest& contest);

}  // namespace bench
