#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "fl/i18n/ustring.hpp"
#include "quenlith/syntax/Marker.hpp"
#include "quenlith/syntax/MarkerMatch.hpp"

namespace quenlith::syntax {

/// What the copies of one marker share. Never changes.
class MarkerParts {
 public:
  MarkerParts(std::u16string_view element, std::u16string_view type, std::u16string_view id,
              Marker::Data members);

  /// Makes the marker of a successful match. Markers of a known element that have nothing else
  /// share one object each.
  static Marker makeMarker(const MarkerMatch& match);

  std::u16string_view element() const { return view().substr(0, elementLength); }
  std::u16string_view type() const { return view().substr(elementLength, typeLength); }
  std::u16string_view id() const { return view().substr(elementLength + typeLength); }
  const Marker::Data& data() const { return members; }

  /// The canonical text.
  fl::i18n::ustring text() const;

 private:
  std::u16string_view view() const { return names; }

  // Element, type and id in one string: one allocation where they are long, else none.
  fl::i18n::ustring names;
  std::size_t elementLength;
  std::size_t typeLength;
  Marker::Data members;
};

}  // namespace quenlith::syntax
