#include "quenlith/build/markup/code/line/MarkerKind.hpp"

#include <cstring>
#include <string_view>

#include "quenlith/syntax/markers.hpp"

namespace quenlith::build::markup::code::line {

using syntax::KnownElement;
using syntax::Marker;

bool isControl(const Marker& marker) noexcept {
  return marker.knownElement() == KnownElement::kControl;
}

bool isOutput(const Marker& marker) noexcept {
  return marker.knownElement() == KnownElement::kOutput;
}

bool isTask(const Marker& marker) noexcept {
  return marker.knownElement() == KnownElement::kTask;
}

bool isTextAnchor(const Marker& marker) noexcept {
  constexpr std::u16string_view kAnchor = u"anchor";
  const std::u16string_view type = marker.typeView();
  return marker.knownElement() == KnownElement::kText && type.size() == kAnchor.size() &&
         std::memcmp(type.data(), kAnchor.data(), kAnchor.size() * sizeof(char16_t)) == 0;
}

void recordMarkerKind(const Marker& marker, ParseResult& result) {
  const KnownElement element = marker.knownElement();
  const bool isKind =
      element == KnownElement::kText ? isTextAnchor(marker) : element != KnownElement::kOther;
  if (isKind) result.markerTypes.insert(syntax::bareMarkerText(element));
}

}  // namespace quenlith::build::markup::code::line
