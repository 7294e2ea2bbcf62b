#pragma once

#include <string_view>
#include <vector>

#include "oracle/markers/MarkerTwin.hpp"

namespace quenlith::oracle {

/// Returns the markers of the known elements of `text`, which may have several lines, as
/// `twinMarkers` finds them.
std::vector<TwinMarker> scanLiterally(std::u16string_view text);

}  // namespace quenlith::oracle
