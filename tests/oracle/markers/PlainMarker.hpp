#pragma once

#include <string>

#include "foundation/json/Value.hpp"

namespace quenlith::oracle {

/// The parts of a marker as plain data.
struct PlainMarker {
  std::u16string element;
  std::u16string type;
  std::u16string id;
  foundation::json::Object data;

  friend bool operator==(const PlainMarker&, const PlainMarker&) = default;
};

/// Returns whether `unit` may be in a name: of an element, a type or an id without quotes.
bool isNameUnit(char16_t unit);

/// Returns the canonical text of `marker`, written by the rules of the marker syntax alone.
std::u16string canonicalText(const PlainMarker& marker);

}  // namespace quenlith::oracle
