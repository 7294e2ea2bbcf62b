#pragma once

#include <cstdint>

#include "tessera/check/scan/BlockComments.hpp"
#include "tessera/check/suspects/Suspect.hpp"

namespace tessera::check::suspects {

/// Adds a fix to `suspect`, which is about the missing closer of `found`, where one is safe.
///
/// `end` is the end of the text that belongs to the candidate. A closer that is missing or damaged
/// at the end of the line is added or corrected if the comment is certainly closed nowhere else.
/// Text between the marker and the closer of the line becomes a separate comment.
void closeComment(const scan::FoundMarker& found, std::uint64_t end, scan::BlockComments& comments,
                  Suspect& suspect);

}  // namespace tessera::check::suspects
