#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::core {

/// One marker found in a snippet, with its place. All numbers count 16-bit code units.
struct MarkerInfo {
  syntax::Marker marker;

  /// Start of the marker's own text in the snippet, its leader included.
  std::uint64_t position = 0;

  /// Length of the marker's own text.
  std::uint64_t length = 0;

  /// The text [begin, end) that the marker refers to, where it says so. Not checked: it may be
  /// empty, reversed or beyond the snippet; a number too large for 64 bits is 2^64 - 1.
  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;
};

}  // namespace quenlith::build::markup::core
