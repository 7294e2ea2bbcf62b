#pragma once

#include <string>
#include <string_view>

#include "quenlith/syntax/Marker.hpp"

namespace tessera::check::scan {

constexpr bool isBlank(char16_t unit) noexcept {
  return unit == u' ' || unit == u'\t';
}

/// Returns whether `unit` is a space beyond ASCII, with or without a width. A marker takes it for a
/// letter.
bool isOtherSpace(char16_t unit);

/// Returns the ASCII letters, digits, "_", "-" and "." at the start of `text`.
std::u16string_view nameAtStartOf(std::u16string_view text);

/// Returns `text` in quotes, as UTF-8 without control characters. Long text is cut in the middle; a
/// double quote alone is in single quotes.
std::string quoted(std::u16string_view text);

/// Returns how a message names a marker: its id in quotes, or "without an id".
std::string nameOf(const quenlith::syntax::Marker& marker);

/// Returns `text` as UTF-8 without control characters.
std::string plainText(std::u16string_view text);

}  // namespace tessera::check::scan
