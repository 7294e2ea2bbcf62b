#include "quenlith/build/markup/code/line/PositionCheck.hpp"

#include <algorithm>

#include "failures/kdzero/MarkerInfo.hpp"
#include "failures/kdzero/ParserFailure.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::code::line {

using core::MarkerInfo;
using failures::kdzero::ParserFailure;
using foundation::json::Value;

namespace {

std::uint64_t endOf(const MarkerInfo& marker) noexcept {
  return marker.position + marker.length;
}

// A marker is touched when the range begins within its closed bounds, ends behind its first
// position and not behind its end, or encloses it. Markers stand apart in ascending order, so
// when any of them is touched, the last one that begins before the range ends is, and it is touched
// when the range begins at or before its end.
bool touchesMarker(std::uint64_t begin, std::uint64_t end,
                   std::span<const MarkerInfo> markers) noexcept {
  const auto beyond = std::partition_point(markers.begin(), markers.end(),
                                           [end](const MarkerInfo& m) { return m.position < end; });
  return beyond != markers.begin() && begin <= endOf(*(beyond - 1));
}

}  // namespace

bool isUsableRange(std::uint64_t begin, std::uint64_t end, std::uint64_t lineLength,
                   std::span<const MarkerInfo> markers) noexcept {
  return begin < end && end <= lineLength && !touchesMarker(begin, end, markers);
}

void addPositionFailure(document::kdzero::Node lineNode, const MarkerInfo& marker) {
  quenlith::shared::logging::trace("Building a bad position parser failure");
  auto& parserFailures = lineNode->getParserFailuresMutable();
  ParserFailure failure;
  failure.setFailureId(u"invalid_position_data");
  failure.setMarkerInfo(failures::kdzero::MarkerInfo()
                            .setFeatureId(marker.marker.getElement())
                            .setSubFeatureId(marker.marker.getType())
                            .setMarkerId(marker.marker.getId()));
  const auto [begin, end] = *marker.range;
  failure.setFailureData({{"position", std::vector<Value>{Value(static_cast<double>(begin)),
                                                          Value(static_cast<double>(end))}}});
  parserFailures.add(failure);
}

}  // namespace quenlith::build::markup::code::line
