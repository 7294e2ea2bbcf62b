#pragma once

#include <vector>

#include "tessera/check/catalogue/Diagnostic.hpp"
#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/rules/ranges.hpp"
#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/scan/TaskWalk.hpp"

namespace tessera::check::rules {

/// Removes the fixes of near-markers whose result the rest of the file does not confirm: a task
/// marker must get a partner and make a task that overlaps no other, an entry its marker, and a
/// marker that is cut off must be complete without what may be missing.
void dropUncertainFixes(const scan::FileScan& scan, const scan::TaskWalk& walk, Findings& findings);

/// Removes the fixes of lines of code after which the parsers could not use as many ranges as
/// before, or not the range of a marker that the fix makes: a fix must not turn a warning into a
/// failure.
///
/// Each fix of a line is tried alone, then all of them together; if these are not harmless, only
/// the first remains. Linear: many fixes of one line are only tried together.
void dropHarmfulFixes(const scan::FileScan& scan, const IsAccepted& isAccepted,
                      std::vector<catalogue::Diagnostic>& diagnostics);

}  // namespace tessera::check::rules
