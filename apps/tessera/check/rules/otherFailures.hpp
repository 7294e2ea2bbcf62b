#pragma once

#include <span>

#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/scan/RecordedFailures.hpp"

namespace tessera::check::rules {

/// Reports failures that parsers of other bundles recorded.
void reportOtherFailures(const scan::FileScan& scan,
                         std::span<const scan::RecordedFailure> failures, Findings& findings);

}  // namespace tessera::check::rules
