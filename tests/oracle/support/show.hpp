#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quenlith::oracle {

/// Returns `text` in double quotes, every code unit outside printable ASCII as \uXXXX: no two
/// texts look the same, unpaired surrogates included.
std::string show(std::u16string_view text);

/// Returns the first place where two lists differ, with a few entries before it and the rest
/// of both behind it; empty when they are equal.
std::string showDifference(const std::vector<std::string>& expected,
                           const std::vector<std::string>& actual);

}  // namespace quenlith::oracle
