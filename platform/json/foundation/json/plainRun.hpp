#pragma once

#include <cstddef>
#include <string_view>

#include "quenlith/export/json.hpp"

namespace foundation::json {

/// Returns the place, at or after `from`, of the first quote, backslash or unit below U+0020: the
/// units that do not stand for themselves in a JSON string. The size of `text` when there is none.
QUENLITH_JSON_EXPORT std::size_t plainRunEnd(std::u16string_view text, std::size_t from) noexcept;

/// Like `plainRunEnd`, but U+007F to U+009F end a run too: they are written as escapes.
QUENLITH_JSON_EXPORT std::size_t writableRunEnd(std::u16string_view text,
                                                std::size_t from) noexcept;

/// Like `writableRunEnd`, but of UTF-8: an escaped character may begin with the byte C2.
QUENLITH_JSON_EXPORT std::size_t writableRunEnd(std::string_view text, std::size_t from) noexcept;

/// Copies the units of `text` to `output` as bytes up to the first one that ends a run for writing
/// or is above U+007E, and returns how many. All of the room of `text.size()` bytes may be written
/// to.
QUENLITH_JSON_EXPORT std::size_t copyPlainAscii(std::u16string_view text, char* output) noexcept;

}  // namespace foundation::json
