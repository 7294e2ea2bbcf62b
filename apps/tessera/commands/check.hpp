#pragma once

#include "tessera/commands/Options.hpp"

namespace tessera::commands {

/// Parses the files and writes what the parsers and the appendix found wrong to standard
/// output, a line each: "file:line:column: warning: text". Returns the exit status.
int check(const CheckOptions& options);

}  // namespace tessera::commands
