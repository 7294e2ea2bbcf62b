#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/export/markers.hpp"
#include "quenlith/syntax/MarkerParts.hpp"

namespace quenlith::syntax {

/// One parsed marker: its element, its type within that element, its id and its data, each possibly
/// empty.
///
/// An immutable value, except for assignment. Copies share the parsed parts, so copying only
/// increments a reference count; copies may be read and destroyed on several threads.
class QUENLITH_MARKERS_EXPORT Marker {
 public:
  using Data = MarkerParts::Data;

  /// Makes a marker whose parts are all empty.
  Marker() noexcept = default;

  /// Makes a marker from `text`: one of the bare element names "control", "output", "task" and
  /// "text", or the text of one marker of any element except "appendix", with any leader, in any
  /// block comment or with neither, and with or without a range. Any other text results in a marker
  /// whose parts are all empty.
  // NOLINTNEXTLINE(google-explicit-constructor): a text is accepted where a marker is expected.
  Marker(const fl::i18n::ustring& text);

  /// Makes a marker with these parts; for the scanner. With null, all parts are empty.
  explicit Marker(MarkerParts::Pointer parts) noexcept : parts(std::move(parts)) {}

  fl::i18n::ustring getId() const;
  fl::i18n::ustring getElement() const;
  fl::i18n::ustring getType() const;
  Data getData() const;

  /// Like the getters above, but borrowed: valid until the last copy of this marker is destroyed.
  std::u16string_view idView() const noexcept {
    return parts ? parts->id() : std::u16string_view();
  }
  std::u16string_view elementView() const noexcept {
    return parts ? parts->element() : std::u16string_view();
  }
  std::u16string_view typeView() const noexcept {
    return parts ? parts->type() : std::u16string_view();
  }
  /// Like `idView`. The first call parses the data and may throw std::bad_alloc.
  const Data& dataView() const;

  /// Returns the canonical text. A marker made from it is equal to this one.
  fl::i18n::ustring toString() const;

  /// Returns whether element, type, id and data are equal.
  bool operator==(Marker other) const;

 private:
  // Parses no data where there is none.
  bool hasData() const { return parts && !parts->dataText().empty() && !dataView().empty(); }

  // Null for the marker whose parts are all empty.
  MarkerParts::Pointer parts;
};

}  // namespace quenlith::syntax
