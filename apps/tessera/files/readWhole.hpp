#pragma once

#include <string>

#include "tessera/files/Descriptor.hpp"

namespace tessera::files {

/// Returns the bytes of the file `name`; "-" is standard input. Throws ProblemError when it cannot
/// be read.
std::string readWhole(const std::string& name);

/// Does the same for an open file; `name` is for messages.
std::string readWhole(const std::string& name, Descriptor file);

}  // namespace tessera::files
