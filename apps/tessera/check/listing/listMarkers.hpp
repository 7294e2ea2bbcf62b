#pragma once

#include <string>

#include "tessera/check/listing/ListedFile.hpp"
#include "tessera/check/rules/ranges.hpp"
#include "tessera/session/FileParser.hpp"

namespace tessera::check::listing {

/// Returns the markers of a parsed file, which the user named `path`, and what became of each.
ListedFile listMarkers(std::string path, session::ParsedFile file,
                       const rules::IsAccepted& isAccepted);

}  // namespace tessera::check::listing
