#include "quenlith/build/markup/code/line/MarkerKind.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace quenlith::build::markup::code::line {

using fl::i18n::ustring;
using syntax::Marker;
using namespace std::string_view_literals;

namespace {

// Compares bytes: "==" of UTF-16 texts compares one code unit after the other.
bool areEqual(std::u16string_view text, std::u16string_view word) noexcept {
  return std::equal(text.begin(), text.end(), word.begin(), word.end());
}

}  // namespace

MarkerKind kindOf(const Marker& marker) {
  const ustring element = marker.getElement();
  if (areEqual(element, u"output"sv)) return MarkerKind::kOutput;
  if (areEqual(element, u"task"sv)) return MarkerKind::kTask;
  if (areEqual(element, u"control"sv)) return MarkerKind::kControl;
  if (!areEqual(element, u"text"sv)) return MarkerKind::kOther;
  return areEqual(marker.getType(), u"anchor"sv) ? MarkerKind::kTextAnchor : MarkerKind::kOther;
}

void recordMarkerKind(MarkerKind kind, ParseResult& result) {
  if (kind == MarkerKind::kOther) return;
  // In the order of the enumeration. An anchor is recorded as "text".
  static constexpr std::array kElements{u"control"sv, u"output"sv, u"task"sv, u"text"sv};
  const ustring element(kElements[static_cast<std::size_t>(kind)]);
  result.markerTypes.insert(Marker(element).toString());
}

}  // namespace quenlith::build::markup::code::line
