#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessera::terminal {

/// Returns how many columns a terminal shows `text` in, which is UTF-8 on one line.
std::size_t widthOf(std::string_view text);

/// Returns `text`, UTF-8 on one line, broken between words so that rows have at most `columns`
/// columns. The first row begins at column `column`, 0-based, and the others are indented. A word
/// that is too long for a row is not broken.
std::string wrapWords(std::string_view text, std::size_t column, std::size_t columns);

}  // namespace tessera::terminal
