#pragma once

#include <string>
#include <string_view>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::host {

/// Returns what the framework's `message` about the bundle `file` says, without the name of the
/// file and with the remedy on its own. `location` is the name that the framework uses for the
/// file.
diagnostics::Problem describeFault(const std::string& file, const std::string& location,
                                   std::string_view message);

/// Returns whether `message` is due to a lack of memory. A framework passes exceptions on as text.
bool saysOutOfMemory(std::string_view message) noexcept;

/// Returns what to do if `message` is due to a lack of memory or open files, and not to the files
/// of the program; empty if it is not.
std::string remedyForShortage(std::string_view message);

}  // namespace tessera::host
