#pragma once

#include <string_view>

namespace tessera::inputs {

/// Returns whether `pattern` matches the whole of `path`, as git does: "*" and "?" match no "/",
/// "**" between slashes or at an end of the pattern does, "[...]" is a set of characters as in
/// POSIX patterns, and "\" takes the character that follows as it is. Bytes are compared.
///
/// Takes at most as many steps as the product of the two lengths.
bool matchGlob(std::string_view pattern, std::string_view path);

}  // namespace tessera::inputs
