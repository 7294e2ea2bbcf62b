#pragma once

#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/rules/ranges.hpp"
#include "tessera/check/scan/FileScan.hpp"

namespace tessera::check::rules {

/// Reports the markers that no parser handles.
void checkHandling(const scan::FileScan& scan, const IsAccepted& isAccepted, Findings& findings);

}  // namespace tessera::check::rules
