#pragma once

#include <cstdint>
#include <string_view>

namespace tessera::check::listing {

/// What became of a marker in the document. A marker may have several: an anchor with a range, for
/// example.
enum class MarkerFate : std::uint8_t {
  kFailure,
  kText,
  kTaskBegin,
  kTaskEnd,
  kAnchor,
  kUnsetAnchor,
  kNode,
  kHidden,
  kDropped,
  kHandled,
  kIgnored,
  kEntry,
  kDuplicateEntry,
  kUnusedEntry,
};

/// Returns its name in JSON: lower case, words joined by "_".
std::string_view nameOf(MarkerFate fate) noexcept;

/// Returns it as a phrase about the marker.
std::string_view describe(MarkerFate fate) noexcept;

}  // namespace tessera::check::listing
