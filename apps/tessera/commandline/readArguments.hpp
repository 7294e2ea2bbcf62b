#pragma once

#include <string>
#include <vector>

#include "tessera/commandline/Arguments.hpp"

namespace tessera::commandline {

/// Whether operands may be missing and options may lack those that they need: they may when only
/// the help is asked for.
enum class Completeness { kRequired, kOptional };

/// Returns what `words`, the arguments after the name of `command`, say. Throws ProblemError for an
/// option that `command` does not have, a missing value, one that is not in the option's list, an
/// option that is given twice, and an operand too many or too few. --help makes `completeness`
/// optional.
Arguments readArguments(const Command& command, std::vector<std::string> words,
                        Completeness completeness);

}  // namespace tessera::commandline
