#pragma once

#include <string>

#include "oracle/support/MarkerText.hpp"
#include "oracle/support/Random.hpp"

namespace quenlith::oracle {

/// Returns a line of text with whole and damaged markers whose ranges are valid, or invalid in
/// different ways. The line may be empty; a damaged marker may contain a line break.
std::u16string randomLine(Random& random);

/// Returns the text of `draft` with numbers in its holes; each range is chosen for the positions
/// of the markers in the finished line.
std::u16string fillRanges(const DraftText& draft, Random& random);

}  // namespace quenlith::oracle
