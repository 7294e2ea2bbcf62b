#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "quenlith/syntax/Marker.hpp"
#include "tessera/check/catalogue/Diagnostic.hpp"
#include "tessera/check/listing/MarkerFate.hpp"
#include "tessera/source/SourceLines.hpp"

namespace tessera::check::listing {

/// A marker of a file.
struct ListedMarker {
  quenlith::syntax::Marker marker;
  /// From its leader to its end.
  catalogue::Span span;
  /// In code units of its line; not checked. A number too large for 64 bits is 2^64 - 1.
  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;
  std::vector<MarkerFate> fates;
  /// The ids of the failures that the parsers recorded for it.
  std::vector<std::u16string> failureIds;
};

/// One file and its markers.
struct ListedFile {
  /// The file as the user named it.
  std::string path;
  source::SourceLines lines;
  /// In the order of their places, those of the appendix included.
  std::vector<ListedMarker> markers;
};

}  // namespace tessera::check::listing
