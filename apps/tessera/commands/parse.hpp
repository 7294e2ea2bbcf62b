#pragma once

#include "tessera/commands/Options.hpp"

namespace tessera::commands {

/// Parses the files and writes their documents to standard output; problems go to standard
/// error. Returns the exit status.
int parse(const ParseOptions& options);

}  // namespace tessera::commands
