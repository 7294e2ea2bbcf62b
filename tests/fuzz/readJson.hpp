#pragma once

#include <optional>
#include <string_view>

#include "foundation/json/Value.hpp"

namespace quenlith::fuzz {

/// Returns the value of a JSON text as RapidJSON reads it; nothing if `utf8` is not one value in
/// well-formed UTF-8.
std::optional<foundation::json::Value> readJson(std::string_view utf8);

}  // namespace quenlith::fuzz
