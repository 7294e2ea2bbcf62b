#pragma once

#include <string_view>
#include <vector>

#include "quenlith/build/markup/core/MarkerInfo.hpp"

namespace quenlith::oracle {

/// Returns the markers of the known elements of `text` as `twinMarkers` finds them, so that no twin
/// depends on the scanner. Throws std::logic_error if a `Marker` made of the text of one of them
/// has other parts.
std::vector<build::markup::core::MarkerInfo> scanLiterally(std::u16string_view text);

/// Returns whether element, type, id and data are equal.
bool haveEqualParts(const syntax::Marker& left, const syntax::Marker& right);

}  // namespace quenlith::oracle
