#pragma once

#include "tessera/commands/Options.hpp"

namespace tessera::commands {

/// Executes the commands of a file and writes the answers to standard output. Returns the
/// exit status; throws ProblemError at the first line that is not a command.
int replay(const ReplayOptions& options);

}  // namespace tessera::commands
