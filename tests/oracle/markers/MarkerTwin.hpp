#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quenlith/syntax/Marker.hpp"

namespace quenlith::oracle {

/// A marker as the twin finds it.
struct TwinMarker {
  std::size_t position = 0;
  std::size_t length = 0;
  std::u16string element;
  std::u16string type;
  std::u16string id;
  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;
  syntax::Marker::Data data;
};

/// Finds markers by the grammar, literally: tries at every position of the text whether a marker
/// begins there with its leader. Takes quadratic time.
std::vector<TwinMarker> twinMarkers(std::u16string_view text, bool anyElement);

}  // namespace quenlith::oracle
