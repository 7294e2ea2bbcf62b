#include "quenlith/build/markup/code/line/PositionCheck.hpp"

#include <algorithm>

#include "failures/kdzero/MarkerInfo.hpp"
#include "failures/kdzero/ParserFailure.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/build/markup/code/failure/failureIds.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::code::line {

using core::MarkerInfo;
using failures::kdzero::ParserFailure;
using fl::i18n::ustring;
using foundation::json::Value;

namespace {

std::uint64_t endOf(const MarkerInfo& marker) noexcept {
  return marker.position + marker.length;
}

// A range touches a marker when it begins within the marker's closed bounds, ends after the
// marker's position and not after its end, or encloses the marker. Markers are in ascending order
// and do not overlap. So if the range touches any marker, it touches the last one that begins
// before the end of the range, and it does so when it begins at or before the end of that marker.
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
  ParserFailure parserFailure;
  parserFailure.setFailureId(ustring(failure::kInvalidPositionData));
  parserFailure.setMarkerInfo(failures::kdzero::MarkerInfo()
                                  .setFeatureId(marker.marker.getElement())
                                  .setSubFeatureId(marker.marker.getType())
                                  .setMarkerId(marker.marker.getId()));
  const auto [begin, end] = *marker.range;
  parserFailure.setFailureData({{"position", std::vector<Value>{Value(static_cast<double>(begin)),
                                                                Value(static_cast<double>(end))}}});
  parserFailures.add(parserFailure);
}

}  // namespace quenlith::build::markup::code::line
