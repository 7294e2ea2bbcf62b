#pragma once

#include <functional>
#include <span>

#include "quenlith/syntax/Marker.hpp"
#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/scan/RecordedFailures.hpp"

namespace tessera::check::rules {

/// Returns whether a parser of a bundle accepts the marker, so that its text becomes a node.
using IsAccepted = std::function<bool(const quenlith::syntax::Marker&)>;

/// Reports the ranges that cannot be used, with the reason, and doubtful ones: those that cut a
/// character, contain only blanks, hide each other, or have no parser.
void checkRanges(const scan::FileScan& scan, std::span<const scan::RecordedFailure> failures,
                 const IsAccepted& isAccepted, Findings& findings);

}  // namespace tessera::check::rules
