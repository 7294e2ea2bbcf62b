#pragma once

#include <vector>

#include "quenlith/syntax/Marker.hpp"
#include "tessera/source/SourceText.hpp"

namespace tessera::source {

/// Returns the entries of the appendix of `source` in order: the first marker of each line. Of
/// entries with the same element and id only the first is returned. Lines without a marker are
/// skipped.
std::vector<quenlith::syntax::Marker> readAppendix(const SourceText& source);

}  // namespace tessera::source
