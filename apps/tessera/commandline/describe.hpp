#pragma once

#include <string>

#include "tessera/commandline/Command.hpp"

namespace tessera::commandline {

// Parts of the texts about the command line, which help, manual, options page and completions
// share.

/// Returns the usage line of a command, for example "tessera parse [OPTION]... PATH...".
std::string usageOf(const Command& command);

/// Returns the forms of an option with its value, for example "-o, --output FILE".
std::string formsOf(const Option& option);

/// Returns the names of the choices, for example "tree, json or ndjson".
std::string listChoices(const Option& option);

/// Returns the help of an option with what the table knows besides: the choices, the default,
/// and whether it may be repeated.
std::string describe(const Option& option);

}  // namespace tessera::commandline
