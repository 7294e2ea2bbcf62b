#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tessera/check/scan/StringSyntax.hpp"

namespace tessera::check::scan {

/// A string: the text [`begin`, `end`) of a source, from after its opener to after its closer.
struct FoundString {
  std::size_t begin = 0;
  std::size_t end = 0;
  /// Whether it may be the text between two strings: its closer also opens strings, and this one or
  /// one before it goes over several lines, as it does after a quote that is missing or too much.
  bool mayBeReversed = false;
};

/// Tells whether positions of a source are inside strings. Positions are asked for in ascending
/// order; the source is read once.
///
/// In doubt, a position is not inside a string: a string that does not end on its line as it must,
/// and everything after a string of several lines that does not end.
class StringLexer {
 public:
  /// Borrows `text`, whose lines end in LF, and `syntax`.
  StringLexer(std::u16string_view text, const StringSyntax& syntax);

  /// Returns the string that contains the unit at `position`, if there is one; its closing quote
  /// counts as inside.
  std::optional<FoundString> stringAt(std::size_t position);

 private:
  struct Token {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool isString = false;
    bool hasPlainQuotes = false;
  };

  /// A string that begins at some position.
  struct Opened {
    /// After the opener.
    std::size_t begin = 0;
    /// Null if `delimiter` is the closer.
    const StringForm* form = nullptr;
    std::u16string delimiter;
  };

  Token next();
  std::optional<Token> readComment(std::size_t begin) const;
  Token readBlockComment(std::size_t begin) const;
  Token readString(const Opened& opened);
  Token readCharacter(std::size_t begin) const;
  Token readPattern(std::size_t begin);

  std::optional<Opened> openString(std::size_t begin) const;
  std::optional<Opened> openDelimited(std::size_t begin) const;
  std::optional<Opened> openParenthesis(std::size_t begin) const;
  std::optional<Opened> openHashes(std::size_t begin) const;
  bool matches(const StringForm& form, std::size_t begin) const;
  bool hasPrefix(std::size_t begin, std::u16string_view prefix) const;
  std::u16string_view nameBefore(std::size_t end) const;
  bool isDigitSeparator(std::size_t quote) const;

  std::size_t endOf(const Opened& opened, std::size_t depth) const;
  std::size_t findDelimiter(const Opened& opened) const;
  std::size_t findCloser(const StringForm& form, std::size_t from, std::size_t depth) const;
  std::size_t skipEscape(std::size_t backslash) const;
  std::size_t skipCode(const StringForm& form, std::size_t begin, std::size_t depth) const;
  std::size_t lineEndAfter(std::size_t position) const;
  std::size_t run(std::size_t begin, char16_t unit) const;
  bool startsWith(std::size_t begin, std::u16string_view part) const {
    return !part.empty() && text.substr(begin, part.size()) == part;
  }

  std::u16string_view text;
  const StringSyntax& syntax;
  std::size_t at = 0;
  // The string, character or comment read last.
  Token last;
  // Whether a string with plain quotes had several lines.
  bool hasLongString = false;
  // The first quote or line end from some position on; for patterns.
  std::size_t quoteOrLineEnd = 0;
};

}  // namespace tessera::check::scan
