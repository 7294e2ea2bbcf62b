#pragma once

#include "tessera/commands/Options.hpp"

namespace tessera::commands {

/// Serves the page about the inputs to a browser on this machine until nobody has it open any more,
/// and follows the changes of the files. Returns the exit status. Throws ProblemError when it
/// cannot start.
int view(const ViewOptions& options);

}  // namespace tessera::commands
