#pragma once

#include <cstddef>
#include <string>

#include "tessera/commandline/Command.hpp"

namespace tessera::commandline {

// Texts for a terminal, in rows of at most `columns` columns as far as words allow.

/// Returns the help of a command: its usage, operands, options and examples.
std::string helpText(const Command& command, std::size_t columns);

/// Returns the help of the program: its commands and examples.
std::string helpText(const Program& program, std::size_t columns);

/// Returns what the program says without arguments: what it is and how to begin.
std::string introduction(const Program& program, std::size_t columns);

}  // namespace tessera::commandline
