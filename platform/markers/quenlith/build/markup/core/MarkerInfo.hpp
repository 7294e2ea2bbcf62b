#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::core {

/// One marker found in a snippet, with its position. Positions and lengths count 16-bit code units.
struct MarkerInfo {
  syntax::Marker marker;

  /// Start of the marker's text in the snippet, including its leader.
  std::uint64_t position = 0;

  /// Length of the marker's text, including its leader.
  std::uint64_t length = 0;

  /// The range [begin, end) that the marker refers to, if it has one. Not checked: it may be empty,
  /// reversed or past the end of the snippet. A number too large for 64 bits is 2^64 - 1.
  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;
};

}  // namespace quenlith::build::markup::core
