#pragma once

#include "tessera/commands/Options.hpp"

namespace tessera::commands {

/// Parses the files and writes the problems that the parsers and the appendix found to standard
/// output, one per line: "file:line:column: warning: text". Returns the exit status.
int check(const CheckOptions& options);

}  // namespace tessera::commands
