#pragma once

#include <string>

#include "tessera/check/catalogue/CheckedFile.hpp"

namespace tessera::reports {

/// Returns "file:line:column" for a position in `file`; the column counts characters from 1.
std::string placeOf(const check::catalogue::CheckedFile& file,
                    const check::catalogue::Position& position);

}  // namespace tessera::reports
