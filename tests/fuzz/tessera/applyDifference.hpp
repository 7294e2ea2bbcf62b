#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quenlith::fuzz {

/// Applies a difference in the unified format strictly: each context line and each removed line
/// must be in its place, and the line numbers and counts must be right. Returns nothing if they are
/// not. An empty difference changes nothing.
std::optional<std::string> applyDifference(std::string_view text, std::string_view difference);

}  // namespace quenlith::fuzz
