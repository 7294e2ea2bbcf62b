#pragma once

#include <string>

#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/check/rules/ranges.hpp"
#include "tessera/session/FileParser.hpp"

namespace tessera::check {

/// Returns what is wrong with a parsed file, which the user named `path`. `isAccepted` is asked
/// about markers whose text a parser of a bundle may take.
catalogue::CheckedFile checkFile(std::string path, session::ParsedFile file,
                                 const rules::IsAccepted& isAccepted);

}  // namespace tessera::check
