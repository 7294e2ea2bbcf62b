#pragma once

#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/scan/TaskWalk.hpp"

namespace tessera::check::rules {

/// Removes the fixes of near-markers whose result the rest of the file does not confirm: a task
/// marker must get a partner, an entry its marker, and a marker that is cut off must be complete
/// without what may be missing.
void dropUncertainFixes(const scan::FileScan& scan, const scan::TaskWalk& walk, Findings& findings);

}  // namespace tessera::check::rules
