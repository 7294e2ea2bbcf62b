#pragma once

#include <vector>

#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/suspects/Suspect.hpp"

namespace tessera::check::suspects {

/// The texts of a file that are almost markers, in the order of their places.
struct Suspects {
  std::vector<Suspect> code;
  std::vector<Suspect> appendix;
};

/// Finds what its author certainly meant as a marker, but is none. Text that only resembles one, as
/// it may occur in any code, is left out. Linear.
Suspects findSuspects(const scan::FileScan& scan);

}  // namespace tessera::check::suspects
