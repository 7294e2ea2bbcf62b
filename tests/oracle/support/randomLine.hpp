#pragma once

#include <string>

#include "oracle/support/MarkerText.hpp"
#include "oracle/support/Random.hpp"

namespace quenlith::oracle {

/// Returns a line of text with whole and damaged markers whose ranges are valid or invalid in
/// every way that there is. The line may be empty; it holds no line break but a planted one.
std::u16string randomLine(Random& random);

/// Writes numbers into the holes of `draft`, each range chosen for the places where the
/// finished line has its markers, and returns the text.
std::u16string fillRanges(const DraftText& draft, Random& random);

}  // namespace quenlith::oracle
