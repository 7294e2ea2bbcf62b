#pragma once

#include <string>
#include <string_view>

#include "quenlith/elf/Fault.hpp"

namespace quenlith::elf {

/// Returns what the loader's message `error` about the library `path` means: a library that is
/// missing, a symbol that nobody defines, a lack of memory, or the message itself.
Fault describeLoadError(const std::string& path, std::string_view error);

/// Returns whether the loader says in `error` that it got no memory.
bool saysLackOfMemory(std::string_view error);

}  // namespace quenlith::elf
