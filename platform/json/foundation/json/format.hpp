#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "quenlith/export/json.hpp"

namespace foundation::json {

// Each function appends to `output`; runs without escapes are copied in bulk.

QUENLITH_JSON_EXPORT void appendInteger(std::string& output, std::int64_t number);
QUENLITH_JSON_EXPORT void appendInteger(std::string& output, std::uint64_t number);

/// Appends a number in the format of ECMAScript's `Number::toString`: the shortest digits that
/// parse to the same number, without an exponent from 1e-6 up to but not including 1e21, otherwise
/// with one; zero of either sign is 0. A NaN or an infinity is null. The digits of a float are the
/// shortest that parse to the same float.
QUENLITH_JSON_EXPORT void appendNumber(std::string& output, double number);
QUENLITH_JSON_EXPORT void appendNumber(std::string& output, float number);

/// Like `appendNumber`, but so that the number is parsed as a double again: ".0" is added to one
/// with neither a point nor an exponent, and negative zero is -0.0.
QUENLITH_JSON_EXPORT void appendCanonicalNumber(std::string& output, double number);

/// Appends a text in quotes, as UTF-8.
///
/// The quote, the backslash, U+0000 to U+001F and U+007F to U+009F are escaped: in the
/// two-character form where JSON has one, else as `\u00xx` in lower case. Unpaired surrogates and
/// ill-formed UTF-8 are written as U+FFFD.
QUENLITH_JSON_EXPORT void appendQuoted(std::string& output, std::u16string_view text);
QUENLITH_JSON_EXPORT void appendQuoted(std::string& output, std::string_view utf8);

/// Like `appendQuoted`, but U+007F to U+009F are not escaped, and bytes are copied unchecked.
QUENLITH_JSON_EXPORT void appendCanonicalQuoted(std::string& output, std::string_view utf8);

}  // namespace foundation::json
