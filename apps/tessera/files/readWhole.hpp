#pragma once

#include <string>

namespace tessera::files {

/// Returns the bytes of the file `name`; "-" is standard input. Throws ProblemError when it cannot
/// be read.
std::string readWhole(const std::string& name);

}  // namespace tessera::files
