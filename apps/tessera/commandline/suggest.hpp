#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessera::commandline {

/// Returns `did you mean "NAME"? ` with the first of `names` that is similar to `word` or else
/// begins with it; empty if there is none.
std::string suggest(std::string_view word, const std::vector<std::string_view>& names);

}  // namespace tessera::commandline
