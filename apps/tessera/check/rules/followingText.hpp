#pragma once

#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/scan/FileScan.hpp"

namespace tessera::check::rules {

/// Adds suspects for the markers in line comments that are directly followed by a word or by a
/// second ">".
void checkFollowingText(const scan::FileScan& scan, Findings& findings);

}  // namespace tessera::check::rules
