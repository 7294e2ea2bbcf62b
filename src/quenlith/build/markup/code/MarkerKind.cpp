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
  const bool recorded =
      isControl(marker) || isOutput(marker) || isTask(marker) || isTextAnchor(marker);
  if (recorded) result.markerTypes.insert(Marker(marker.getElement()).toString());
}

}  // namespace quenlith::build::markup::code
