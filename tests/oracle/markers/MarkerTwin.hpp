#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "PlainMarker.hpp"

namespace quenlith::oracle {

/// A marker as the twin finds it, with its position, length and range.
struct TwinMarker : PlainMarker {
  std::size_t position = 0;
  std::size_t length = 0;
  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;
};

/// Finds markers by the grammar, literally: tries at every position of the text whether a marker
/// begins there with its leader. Takes quadratic time.
std::vector<TwinMarker> twinMarkers(std::u16string_view text, bool anyElement);

}  // namespace quenlith::oracle
