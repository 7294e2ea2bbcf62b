#pragma once

#include <optional>

#include "fl/i18n/ustring.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::shared::appendix {

/// The entry of an appendix for one marker, or the absence of one.
struct AppendixEntry {
  /// The entry as text; empty when there is none.
  fl::i18n::ustring text;
  /// The entry with its data; absent when there is none.
  std::optional<quenlith::syntax::Marker> marker;
};

}  // namespace quenlith::shared::appendix
