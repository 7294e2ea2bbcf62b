#pragma once

#include <vector>

#include "oracle/support/Random.hpp"
#include "oracle/support/World.hpp"

namespace quenlith::oracle {

/// Returns a line that a task parser may meet: plain, or with task markers of few ids, alone
/// or two, behind text or at the start, with anchors and other markers beside them.
ustring randomTaskLine(Random& random);

/// Returns a block of text with none to three task markers for each of the few ids.
ustring randomBlock(Random& random);

/// Returns appendix entries for some of the ids: every key and every kind of value.
std::vector<Marker> randomAppendix(Random& random);

}  // namespace quenlith::oracle
