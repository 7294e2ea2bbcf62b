#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quenlith::oracle {

/// Returns `text` in double quotes, every code unit outside printable ASCII as \uXXXX. Different
/// texts look different, even with unpaired surrogates.
std::string show(std::u16string_view text);

/// Returns the first difference of two lists, with a few entries before it and the rest of both
/// after it; empty when they are equal.
std::string showDifference(const std::vector<std::string>& expected,
                           const std::vector<std::string>& actual);

}  // namespace quenlith::oracle
