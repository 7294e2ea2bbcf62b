#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "quenlith/build/markup/code/line/PositionCheck.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"

namespace quenlith::oracle {
namespace {

using build::markup::core::MarkerInfo;
using Markers = std::vector<MarkerInfo>;

constexpr std::uint64_t kLineLength = 10;

bool conflicts(const MarkerInfo& marker, std::uint64_t begin, std::uint64_t end) {
  const std::uint64_t first = marker.position;
  const std::uint64_t last = marker.position + marker.length;
  if (first <= begin && begin <= last) return true;
  if (first < end && end <= last) return true;
  return begin < first && end > last;
}

// The rule, applied to each marker.
bool isUsable(const Markers& markers, std::uint64_t begin, std::uint64_t end) {
  if (begin >= end || end > kLineLength) return false;
  for (const MarkerInfo& marker : markers) {
    if (conflicts(marker, begin, end)) return false;
  }
  return true;
}

// Adds `markers` and all layouts that extend it by up to `more` markers after the last one.
void addLayouts(const Markers& markers, std::size_t more, std::vector<Markers>& layouts) {
  layouts.push_back(markers);
  if (more == 0) return;
  const std::uint64_t from = markers.empty() ? 0 : markers.back().position + markers.back().length;
  for (std::uint64_t position = from; position < kLineLength; ++position) {
    for (std::uint64_t length = 1; position + length <= kLineLength; ++length) {
      Markers longer = markers;
      longer.emplace_back();
      longer.back().position = position;
      longer.back().length = length;
      addLayouts(longer, more - 1, layouts);
    }
  }
}

TEST(PositionOracle, RangesAgreeWithTheRuleInEveryLayout) {
  std::vector<Markers> layouts;
  addLayouts({}, 3, layouts);
  ASSERT_GT(layouts.size(), 1'000U);
  for (const Markers& markers : layouts) {
    for (std::uint64_t begin = 0; begin <= kLineLength + 1; ++begin) {
      for (std::uint64_t end = 0; end <= kLineLength + 1; ++end) {
        ASSERT_EQ(build::markup::code::line::isUsableRange(begin, end, kLineLength, markers),
                  isUsable(markers, begin, end))
            << begin << ' ' << end << " with " << markers.size() << " markers";
      }
    }
  }
}

}  // namespace
}  // namespace quenlith::oracle
