#pragma once

#include <optional>

#include "fl/i18n/ustring.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::shared::appendix {

/// What an appendix has for one marker.
struct AppendixEntry {
  /// The entry as it is written; empty when there is none.
  fl::i18n::ustring text;
  /// The entry with its data; absent when there is none.
  std::optional<quenlith::syntax::Marker> marker;
};

}  // namespace quenlith::shared::appendix
