#pragma once

#include <vector>

#include "oracle/support/Random.hpp"
#include "oracle/support/World.hpp"

namespace quenlith::oracle {

/// Returns a line for a task parser: plain, or with task markers of a few ids, after text or at
/// the start, sometimes with anchors and other markers.
ustring randomTaskLine(Random& random);

/// Returns a block of text with task markers of a few ids, most of them in pairs.
ustring randomBlock(Random& random);

/// Returns appendix entries for some of the ids, with any keys and any kinds of value.
std::vector<ustring> randomAppendix(Random& random);

}  // namespace quenlith::oracle
