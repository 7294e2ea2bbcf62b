#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "tessera/check/suspects/Suspect.hpp"

namespace tessera::check::suspects {

/// Adds the texts of a line that would be markers with an id if one character of "<@" were not
/// missing.
void findIncompleteOpenings(std::uint64_t lineNumber, std::u16string_view line,
                            std::vector<Suspect>& suspects);

}  // namespace tessera::check::suspects
