#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

namespace foundation::json {

/// A number as JSON text gives it: a whole number is signed where it fits in 64 bits, else
/// unsigned where it fits, else a double; one with a fraction or an exponent is a double.
using Number = std::variant<std::int64_t, std::uint64_t, double>;

/// Returns the number that `literal` writes, or nothing when it is beyond the largest double.
///
/// `literal` must be one well-formed JSON number. A double is the nearest one; what is too small
/// for any is a zero of its sign. Does not allocate, whatever the count of digits.
std::optional<Number> parseNumber(std::u16string_view literal);

}  // namespace foundation::json
