#include "quenlith/syntax/Marker.hpp"

#include <optional>
#include <utility>

#include "quenlith/syntax/MarkerMatch.hpp"
#include "quenlith/syntax/MarkerParts.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::syntax {

namespace {

using fl::i18n::ustring;

// The marker that is the whole of `text`, its leader optional.
std::optional<MarkerMatch> matchWhole(std::u16string_view text) {
  const auto opening = leaderLength(text);
  if (!opening || text.substr(*opening, 2) != u"<@") {
    return std::nullopt;
  }
  const MarkerMatch match = matchMarker(text, *opening, Elements::kAny);
  if (match.problem != nullptr || match.end != text.size()) {
    return std::nullopt;
  }
  return match;
}

Marker makeMarker(std::u16string_view text) {
  if (isKnownElement(text)) {
    MarkerMatch bare;
    bare.element = text;
    return MarkerParts::makeMarker(bare);
  }
  const auto match = matchWhole(text);
  return match ? MarkerParts::makeMarker(*match) : Marker();
}

}  // namespace

Marker::Marker(const ustring& text) : Marker(makeMarker(text)) {}

Marker::Marker(std::shared_ptr<const MarkerParts> parsed) noexcept : parts(std::move(parsed)) {}

ustring Marker::getId() const {
  return ustring(idView());
}
ustring Marker::getElement() const {
  return ustring(elementView());
}
ustring Marker::getType() const {
  return ustring(typeView());
}
Marker::Data Marker::getData() const {
  return dataView();
}

std::u16string_view Marker::idView() const noexcept {
  return parts ? parts->id() : std::u16string_view();
}

std::u16string_view Marker::elementView() const noexcept {
  return parts ? parts->element() : std::u16string_view();
}

std::u16string_view Marker::typeView() const noexcept {
  return parts ? parts->type() : std::u16string_view();
}

const Marker::Data& Marker::dataView() const noexcept {
  static const Data kNone;
  return parts ? parts->data() : kNone;
}

ustring Marker::toString() const {
  return parts ? parts->text() : u"%<@>";
}

bool Marker::operator==(Marker other) const {
  return parts == other.parts ||
         (elementView() == other.elementView() && typeView() == other.typeView() &&
          idView() == other.idView() && dataView() == other.dataView());
}

}  // namespace quenlith::syntax
