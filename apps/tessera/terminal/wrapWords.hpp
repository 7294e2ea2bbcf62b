#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessera::terminal {

/// Returns how many columns a terminal shows `text` in, which is UTF-8 on one line.
std::size_t widthOf(std::string_view text);

/// How far the rows after the first one are indented. Not as deep as the text of a source line.
inline constexpr std::size_t kWrapIndent = 4;

/// Returns `text`, UTF-8 on one line, broken between words so that rows have at most `columns`
/// columns. The first row begins at column `column`, 0-based, the others at `indent`. A word that
/// is too long for a row is not broken.
std::string wrapWords(std::string_view text, std::size_t column, std::size_t columns,
                      std::size_t indent = kWrapIndent);

}  // namespace tessera::terminal
