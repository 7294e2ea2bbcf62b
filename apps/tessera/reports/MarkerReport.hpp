#pragma once

#include <string>

#include "tessera/check/listing/ListedFile.hpp"

namespace tessera::reports {

/// Appends the markers of a file as rows: "file:line:column: element:type "id" [begin,end] data:
/// fate, ...". Control characters are escaped.
void appendMarkerRows(std::string& text, const check::listing::ListedFile& file);

/// Appends the markers of a file as one JSON object on a line.
void appendMarkerJson(std::string& text, const check::listing::ListedFile& file);

}  // namespace tessera::reports
