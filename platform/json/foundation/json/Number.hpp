#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

#include "quenlith/export/json.hpp"

namespace foundation::json {

/// A number of a JSON text. A literal without fraction and exponent is a signed integer if it fits
/// in 64 bits, else an unsigned one if it fits, else a double. Any other literal is a double.
using Number = std::variant<std::int64_t, std::uint64_t, double>;

/// Returns the value of `literal`, or nothing when it is beyond the largest double.
///
/// `literal` must be one well-formed JSON number. A double is the nearest one; a number too small
/// for a double becomes zero with the same sign. Does not allocate, however many digits there are.
QUENLITH_JSON_EXPORT std::optional<Number> parseNumber(std::u16string_view literal);

}  // namespace foundation::json
