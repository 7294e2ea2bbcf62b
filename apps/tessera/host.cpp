#include "tessera/host.hpp"

#include "tessera/commands/commandLine.hpp"

int tesseraRun(int argumentCount, char** arguments) noexcept {
  return tessera::commands::runCommandLine(argumentCount, arguments);
}
