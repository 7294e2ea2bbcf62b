#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace tessera::check::scan {

/// How a language writes strings and comments.
struct StringSyntax {
  /// "#" begins a comment; else "//" and "/*" do.
  bool hasHashComments = false;
  /// Three quotes begin a string of several lines.
  bool hasTripleQuotes = false;
  /// R"x( begins a string that )x" ends.
  bool hasRawStrings = false;
  /// A backtick begins a string without escapes, of several lines.
  bool hasBackticks = false;
};

/// Returns the syntax of the language that the extension of a file name tells; nothing for a
/// language whose strings cannot be told from its other text with certainty.
std::optional<StringSyntax> stringSyntaxOf(std::string_view path);

/// Tells whether positions of a source are inside strings. Positions are asked for in ascending
/// order; the source is read once.
class StringLexer {
 public:
  /// Borrows `text`, whose lines end in LF.
  StringLexer(std::u16string_view text, StringSyntax syntax) : text(text), syntax(syntax) {}

  /// Returns whether the unit at `position` is inside a string, its quotes not included.
  bool isInString(std::size_t position);

 private:
  struct Token {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool isString = false;
  };

  Token next();
  Token readComment(std::size_t begin);
  Token readString(std::size_t begin);
  Token readRawString(std::size_t begin);
  std::size_t findEnd(std::u16string_view closer, std::size_t from, bool hasEscapes) const;
  bool isRawPrefix(std::size_t quote) const;
  bool isDigitSeparator(std::size_t quote) const;
  bool startsWith(std::size_t at, std::u16string_view part) const {
    return text.substr(at, part.size()) == part;
  }

  std::u16string_view text;
  StringSyntax syntax;
  std::size_t at = 0;
  // The string or comment read last.
  Token last;
};

}  // namespace tessera::check::scan
