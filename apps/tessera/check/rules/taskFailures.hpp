#pragma once

#include <span>

#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/scan/RecordedFailures.hpp"
#include "tessera/check/scan/TaskWalk.hpp"

namespace tessera::check::rules {

/// Explains the failures of task markers: one diagnostic for all failures of one id, and for ids
/// that explain each other. Linear.
void explainTaskFailures(const scan::FileScan& scan, const scan::TaskWalk& walk,
                         std::span<const scan::RecordedFailure> failures, Findings& findings);

}  // namespace tessera::check::rules
