#pragma once

namespace tessera::commands {

/// Runs the program with the arguments of `main`. Returns the exit status; every problem has
/// been told on standard error.
int runCommandLine(int argumentCount, char** arguments);

}  // namespace tessera::commands
