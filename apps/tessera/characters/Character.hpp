#pragma once

#include <cstddef>
#include <string_view>

namespace tessera::characters {

/// A character of a text of 16-bit code units.
struct Character {
  /// Its code point; an unpaired surrogate is itself.
  char32_t code = 0;
  /// How many code units it takes: 1 or 2.
  std::size_t units = 1;
};

/// Returns the character at the start of `text`, which is not empty.
constexpr Character firstOf(std::u16string_view text) noexcept {
  const char32_t unit = text[0];
  if ((unit & 0xFC00) == 0xD800 && text.size() > 1 && (text[1] & 0xFC00) == 0xDC00) {
    return {0x10000 + ((unit & 0x3FF) << 10) + (text[1] & 0x3FF), 2};
  }
  return {unit, 1};
}

constexpr bool isSurrogate(char32_t code) noexcept {
  return (code & ~char32_t{0x7FF}) == 0xD800;
}

}  // namespace tessera::characters
