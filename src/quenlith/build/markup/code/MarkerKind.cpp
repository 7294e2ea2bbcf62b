#include "quenlith/build/markup/code/MarkerKind.hpp"

#include "quenlith/syntax/markers.hpp"

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
  if (isControl(marker) || isOutput(marker) || isTask(marker) || isTextAnchor(marker)) {
    result.markerTypes.insert(syntax::bareMarkerText(marker.elementView()));
  }
}

}  // namespace quenlith::build::markup::code
