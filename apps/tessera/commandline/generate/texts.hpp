#pragma once

#include <span>
#include <string>
#include <string_view>

#include "tessera/commandline/Command.hpp"

namespace tessera::commandline::generate {

// Texts about the command line that are made when the program is built. `diagnostics` are the
// values that complete as Completion::kDiagnostics.

/// Returns the manual page, in the man macros of roff.
std::string manualPage(const Program& program, std::string_view version);

/// Returns a page in Markdown.
std::string optionsPage(const Program& program);

std::string bashCompletion(const Program& program, std::span<const Choice> diagnostics);
std::string zshCompletion(const Program& program, std::span<const Choice> diagnostics);
std::string fishCompletion(const Program& program, std::span<const Choice> diagnostics);

}  // namespace tessera::commandline::generate
