#pragma once

#include "tessera/commands/Options.hpp"

namespace tessera::commands {

/// Writes what a kind of diagnostic means or, without an id, which kinds there are. Returns the
/// exit status; throws ProblemError for an id that does not exist.
int explain(const ExplainOptions& options);

}  // namespace tessera::commands
