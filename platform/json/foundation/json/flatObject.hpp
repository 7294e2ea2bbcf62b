#pragma once

#include <cstddef>
#include <string_view>

#include "quenlith/export/json.hpp"

namespace foundation::json {

/// Returns the place behind the object that begins at `from`, where a "{" must stand, if it is of
/// the simplest form: strings without escapes, numbers of a few digits without an exponent, words,
/// nothing nested. Else returns `from`: it may then be an object all the same.
///
/// Nearly all embedded objects are so, and nothing but their extent is wanted of most of them.
QUENLITH_JSON_EXPORT std::size_t flatObjectEnd(std::u16string_view text, std::size_t from) noexcept;

}  // namespace foundation::json
