#pragma once

#include "tessera/commands/Options.hpp"

namespace tessera::commands {

/// Writes the markers of files and what became of each to standard output; problems go to standard
/// error. Returns the exit status.
int markers(const MarkersOptions& options);

}  // namespace tessera::commands
