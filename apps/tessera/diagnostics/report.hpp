#pragma once

#include <string_view>

namespace tessera::diagnostics {

/// Writes `message` and a line ending to standard error.
void report(std::string_view message) noexcept;

}  // namespace tessera::diagnostics
