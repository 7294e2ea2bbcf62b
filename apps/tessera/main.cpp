#include "tessera/commands/commandLine.hpp"

int main(int argumentCount, char** arguments) {
  return tessera::commands::runCommandLine(argumentCount, arguments);
}
