#pragma once

#include <string_view>

#include "tessera/commandline/Command.hpp"

namespace tessera::commandline {

/// Returns the table of the commands and options. The parser of the command line and every text
/// about it are made from this table.
const Program& program();

/// Returns null if there is no command of that name.
const Command* findCommand(std::string_view name);

/// Returns the option of `command` with the long name `name`, or null.
const Option* findOption(const Command& command, std::string_view name);

/// Returns what holds without the option: its fallback or its first choice; may be empty.
std::string_view defaultOf(const Option& option);

}  // namespace tessera::commandline
