#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "quenlith/syntax/Marker.hpp"

namespace quenlith::build::markup::code {

/// One segment of a line, the input of a code element parser.
struct CodeElement {
  /// The text of the segment without the markers' own text. May be empty.
  fl::i18n::ustring text;
  /// The marker that owns the segment; absent for plain text.
  std::optional<quenlith::syntax::Marker> marker;
  /// The owning marker's range [begin, end) in 16-bit code units of the whole line;
  /// absent for plain text.
  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;
};

}  // namespace quenlith::build::markup::code
