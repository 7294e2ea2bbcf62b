#pragma once

#include <string_view>

namespace tessera::diagnostics {

/// Writes all of `text` to the open file `descriptor`: a short write, an interrupted one and a pipe
/// that does not block are continued. Returns 0, or the error (an errno) that ended it.
int writeAll(int descriptor, std::string_view text) noexcept;

}  // namespace tessera::diagnostics
