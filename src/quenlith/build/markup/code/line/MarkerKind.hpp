#pragma once

#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code::line {

// What a marker is told by: its element, and for an anchor its type, compared exactly.
bool isControl(const syntax::Marker& marker) noexcept;
bool isOutput(const syntax::Marker& marker) noexcept;
bool isTask(const syntax::Marker& marker) noexcept;
bool isTextAnchor(const syntax::Marker& marker) noexcept;

/// Adds the kind of `marker` to `result.markerTypes`: the canonical text of a marker made from
/// the bare element name, also for an anchor. A text marker that is no anchor adds nothing.
void recordMarkerKind(const syntax::Marker& marker, ParseResult& result);

}  // namespace quenlith::build::markup::code::line
