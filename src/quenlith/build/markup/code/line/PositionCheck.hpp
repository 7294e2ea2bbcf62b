#pragma once

#include <cstdint>
#include <span>

#include "document/kdzero/Node.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"

namespace quenlith::build::markup::code::line {

/// Returns whether the half-open range [`begin`, `end`) can be used to split a line of `lineLength`
/// 16-bit code units that contains `markers`, which are in ascending order and do not overlap.
///
/// It can when it is not empty, ends within the line and touches no marker's own text. It may
/// end where a marker's text begins, but may not begin where a marker's text ends. O(log m) for m
/// markers.
bool isUsableRange(std::uint64_t begin, std::uint64_t end, std::uint64_t lineLength,
                   std::span<const core::MarkerInfo> markers) noexcept;

/// Adds an "invalid_position_data" failure for `marker`, which has a range, to `lineNode`. The
/// failure data contains the range as two doubles.
void addPositionFailure(document::kdzero::Node lineNode, const core::MarkerInfo& marker);

}  // namespace quenlith::build::markup::code::line
