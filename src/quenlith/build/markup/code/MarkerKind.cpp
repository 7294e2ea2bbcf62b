#include "quenlith/build/markup/code/MarkerKind.hpp"

#include <string_view>

namespace quenlith::build::markup::code {

using syntax::Marker;

bool isControl(const Marker& marker) noexcept {
  return marker.elementView() == u"control";
}

bool isOutput(const Marker& marker) noexcept {
  return marker.elementView() == u"output";
}

bool isTask(const Marker& marker) noexcept {
  return marker.elementView() == u"task";
}

bool isTextAnchor(const Marker& marker) noexcept {
  return marker.elementView() == u"text" && marker.typeView() == u"anchor";
}

void recordMarkerKind(const Marker& marker, ParseResult& result) {
  // Each is the canonical text of a marker made from the bare element name; made here once, as
  // making it for every marker costs more than the rest of the record.
  if (isControl(marker)) result.markerTypes.emplace(u"%<@control>");
  if (isOutput(marker)) result.markerTypes.emplace(u"%<@output>");
  if (isTask(marker)) result.markerTypes.emplace(u"%<@task>");
  if (isTextAnchor(marker)) result.markerTypes.emplace(u"%<@text>");
}

}  // namespace quenlith::build::markup::code
