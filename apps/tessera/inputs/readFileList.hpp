#pragma once

#include <string>
#include <vector>

namespace tessera::inputs {

/// Returns the paths that the file `name` lists, "-" for standard input. Each ends in a NUL,
/// or in a line feed with or without a carriage return before it, and then the list may begin with
/// a byte order mark; the last end may be missing. Empty ones are skipped. Throws ProblemError when
/// the file cannot be read or a line contains a NUL.
std::vector<std::string> readFileList(const std::string& name, bool isNulSeparated);

}  // namespace tessera::inputs
