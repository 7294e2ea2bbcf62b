#pragma once

#include <string>

#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/session/FileParser.hpp"

namespace tessera::check {

/// Returns what is wrong with a parsed file, which the user named `path`.
catalogue::CheckedFile checkFile(std::string path, session::ParsedFile file);

}  // namespace tessera::check
