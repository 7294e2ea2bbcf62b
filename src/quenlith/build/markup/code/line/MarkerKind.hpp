#pragma once

#include <cstdint>

#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code::line {

/// What the parsers distinguish markers by: the element, and for an anchor the type too.
enum class MarkerKind : std::uint8_t { kControl, kOutput, kTask, kTextAnchor, kOther };

/// Returns the kind of `marker`. Element and type are compared exactly.
MarkerKind kindOf(const syntax::Marker& marker);

/// Adds the canonical text of a marker made from the bare element name of `kind` to
/// `result.markerTypes`. Adds nothing for `kOther`.
void recordMarkerKind(MarkerKind kind, ParseResult& result);

}  // namespace quenlith::build::markup::code::line
