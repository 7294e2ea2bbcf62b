#pragma once

#include <array>
#include <string_view>

namespace quenlith::build::markup::code::failure {

/// A task marker outside a task whose id is not that of exactly one other task marker in the block.
inline constexpr std::u16string_view kMissingTaskMarkerPair = u"missing_task_marker_pair";

/// A task marker inside a task that has another id.
inline constexpr std::u16string_view kOverlappingTaskMarker = u"overlapping_task_marker";

/// A marker whose range cannot be used to split its line.
inline constexpr std::u16string_view kInvalidPositionData = u"invalid_position_data";

/// The ids of all failures that the parsers record on nodes.
inline constexpr std::array kFailureIds{kMissingTaskMarkerPair, kOverlappingTaskMarker,
                                        kInvalidPositionData};

}  // namespace quenlith::build::markup::code::failure
