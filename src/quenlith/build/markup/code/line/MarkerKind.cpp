#include "quenlith/build/markup/code/line/MarkerKind.hpp"

#include <array>
#include <cstddef>
#include <string_view>

namespace quenlith::build::markup::code::line {

using fl::i18n::ustring;
using syntax::Marker;
using namespace std::string_view_literals;

MarkerKind kindOf(const Marker& marker) {
  const ustring element = marker.getElement();
  if (element == u"output"sv) return MarkerKind::kOutput;
  if (element == u"task"sv) return MarkerKind::kTask;
  if (element == u"control"sv) return MarkerKind::kControl;
  if (element == u"text"sv && marker.getType() == u"anchor"sv) return MarkerKind::kTextAnchor;
  return MarkerKind::kOther;
}

void recordMarkerKind(MarkerKind kind, ParseResult& result) {
  if (kind == MarkerKind::kOther) return;
  // In the order of the enumeration. An anchor is recorded as "text".
  constexpr std::array kElements{u"control", u"output", u"task", u"text"};
  result.markerTypes.insert(Marker(kElements[static_cast<std::size_t>(kind)]).toString());
}

}  // namespace quenlith::build::markup::code::line
