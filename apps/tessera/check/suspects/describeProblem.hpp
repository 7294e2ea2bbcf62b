#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "tessera/check/scan/FoundMarker.hpp"
#include "tessera/check/suspects/Suspect.hpp"

namespace tessera::check::suspects {

/// Says what is wrong with a text that is almost a marker. The text ends at `end` at the latest;
/// `before` is the marker or other "<@" before it on its line, or null; `nextLine` is the line
/// after it.
Suspect describeProblem(const scan::FoundMarker& found, std::uint64_t end,
                        const scan::FoundMarker* before,
                        std::optional<std::u16string_view> nextLine);

}  // namespace tessera::check::suspects
