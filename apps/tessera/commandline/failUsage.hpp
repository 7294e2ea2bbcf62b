#pragma once

#include <string>

#include "tessera/commandline/Command.hpp"

namespace tessera::commandline {

/// Throws ProblemError: `what` is wrong with the command line. `command` may be null. `advice`, if
/// it is not empty, ends in a blank; where the help is follows it.
[[noreturn]] void failUsage(const Command* command, std::string what, const std::string& advice);

}  // namespace tessera::commandline
