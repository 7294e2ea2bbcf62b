#pragma once

#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/scan/TaskWalk.hpp"

namespace tessera::check::rules {

/// Reports anchors that are not set, and ids that several anchors have.
void checkAnchors(const scan::FileScan& scan, const scan::TaskWalk& walk, Findings& findings);

}  // namespace tessera::check::rules
