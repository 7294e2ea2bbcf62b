#pragma once

#include <cstdint>
#include <span>

#include "document/kdzero/Node.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"

namespace quenlith::build::markup::code::line {

/// Tells whether the half-open range [`begin`, `end`) can be used to cut a line of `lineLength`
/// 16-bit code units in which `markers`, ascending and apart from one another, stand.
///
/// It can when it is not empty, ends within the line and touches no marker's own text. It may
/// end where a marker's text begins but not begin where one ends. O(log m) for m markers.
bool isUsableRange(std::uint64_t begin, std::uint64_t end, std::uint64_t lineLength,
                   std::span<const core::MarkerInfo> markers) noexcept;

/// Adds an "invalid_position_data" failure for `marker`, which has a range, to `lineNode`. The
/// range stands in the failure as it is, both numbers as doubles.
void addPositionFailure(document::kdzero::Node lineNode, const core::MarkerInfo& marker);

}  // namespace quenlith::build::markup::code::line
