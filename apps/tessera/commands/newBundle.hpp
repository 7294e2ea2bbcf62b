#pragma once

#include "tessera/commands/Options.hpp"

namespace tessera::commands {

/// Writes the template of an extension bundle and says what to do with it. Returns the exit status;
/// throws ProblemError if the name or the directory cannot be used.
int newBundle(const NewBundleOptions& options);

}  // namespace tessera::commands
