#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "tessera/check/suspects/Suspect.hpp"

namespace tessera::check::suspects {

/// Adds the text at the end of a line that is a marker if its "<" and the "@" at the start of the
/// next line are joined.
void findBrokenOpening(std::uint64_t lineNumber, std::u16string_view line,
                       std::u16string_view nextLine, std::vector<Suspect>& suspects);

/// Adds the texts of a line that would be markers with an id or a range, or start an appendix, if
/// one character of "<@" were not damaged.
void findIncompleteOpenings(std::uint64_t lineNumber, std::u16string_view line,
                            std::vector<Suspect>& suspects);

}  // namespace tessera::check::suspects
