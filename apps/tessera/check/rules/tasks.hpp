#pragma once

#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/scan/TaskWalk.hpp"

namespace tessera::check::rules {

/// Reports task markers that are ignored, and tasks that contain nothing or too many lines.
void checkTasks(const scan::FileScan& scan, const scan::TaskWalk& walk, Findings& findings);

}  // namespace tessera::check::rules
