#pragma once

#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/scan/TaskWalk.hpp"

namespace tessera::check::rules {

/// Reports the lines of the appendix that are not usable entries, entries that nothing refers to,
/// and tasks without an entry.
void checkAppendix(const scan::FileScan& scan, const scan::TaskWalk& walk, Findings& findings);

}  // namespace tessera::check::rules
