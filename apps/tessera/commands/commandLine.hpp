#pragma once

namespace tessera::commands {

/// Runs the program with the arguments of `main` and returns the exit status. Problems are reported
/// on standard error.
int runCommandLine(int argumentCount, char** arguments);

}  // namespace tessera::commands
