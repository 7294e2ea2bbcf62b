#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tessera::terminal {

/// How rows are written.
struct Style {
  bool color = false;
  /// The longest row. Excerpts have at least a few columns of text, however small this is.
  std::size_t columns = 100;
  /// A person reads it: long messages are broken between words.
  bool isTerminal = false;
};

/// The part of a line that a message is about: the code units [begin, end), clipped to the line. An
/// empty part is a position.
struct MarkedLine {
  std::uint64_t number = 0;
  std::u16string_view text;
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Returns two rows with line endings: the line with its number, and below it a caret under the
/// first character that is marked and tildes under the others:
///
///        4 | x = 1  # <@output#o [4,4]>
///          |        ^~~~~~~~~~~~~~~~~~~
///
/// A line that is too long is cut on both sides of the mark, which "..." shows. Takes time in
/// proportion to the columns, not to the length of the line.
std::string excerptOf(const MarkedLine& line, const Style& style);

}  // namespace tessera::terminal
