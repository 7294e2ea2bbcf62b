#pragma once

#include <cstdint>

#include "tessera/check/scan/FoundMarker.hpp"
#include "tessera/check/suspects/Suspect.hpp"

namespace tessera::check::suspects {

/// Says what is wrong with a text that is almost a marker. The text ends at `end` at the latest;
/// `before` is the marker or other "<@" before it on its line, or null.
Suspect describeProblem(const scan::FoundMarker& found, std::uint64_t end,
                        const scan::FoundMarker* before);

}  // namespace tessera::check::suspects
