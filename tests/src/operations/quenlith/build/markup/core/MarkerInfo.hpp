#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::core {

struct MarkerInfo {
  syntax::Marker marker;
  std::uint64_t position;
  std::uint64_t length;
  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;
};

}  // namespace quenlith::build::markup::core
