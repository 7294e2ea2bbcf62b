#pragma once

#include "tessera/commands/Options.hpp"

namespace tessera::commands {

/// Parses the files and writes what is wrong with their markers to standard output. Returns the
/// exit status.
int check(const CheckOptions& options);

}  // namespace tessera::commands
