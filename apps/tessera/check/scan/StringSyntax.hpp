#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tessera::check::scan {

/// How the closing quote can be part of a string.
enum class Escape : std::uint8_t {
  /// It cannot.
  kNone,
  /// After a backslash.
  kBackslash,
  /// Written twice.
  kDoubled
};

/// One way in which a language writes strings.
struct StringForm {
  /// Begins with a quote.
  std::u16string_view opener;
  std::u16string_view closer;
  Escape escape = Escape::kBackslash;
  /// Otherwise the string ends on its line, or after an escaped line break.
  bool spansLines = false;
  /// What must be directly before the opener. Not the end of a longer name.
  std::u16string_view prefix = {};
  /// Any name must be directly before the opener.
  bool needsName = false;
  /// What begins code in the string. Its last unit is a bracket, which ends the code. Empty if the
  /// strings contain no code.
  std::u16string_view interpolation = {};
  /// Quotes directly after the closer are part of the string, and the last ones close it.
  bool mayEndInQuotes = false;
};

/// Strings whose closer depends on the opener.
enum class DelimitedString : std::uint8_t {
  kNone,
  /// C++: R"x( and )x".
  kParenthesis,
  /// Rust: r##" and "##.
  kHashesAfterR,
  /// Swift: ##" and "##, ##""" and """##.
  kHashes,
  /// C#: as many quotes as began it, three or more.
  kQuotes,
  /// Lua: [==[ and ]==]. Comments are written like this, too.
  kBrackets
};

/// How a language writes strings, characters and comments.
struct StringSyntax {
  /// In the order in which they are tried.
  std::span<const StringForm> strings;
  std::array<std::u16string_view, 2> lineComments = {};
  /// Empty if there are none.
  std::u16string_view blockOpener = {};
  std::u16string_view blockCloser = {};
  bool blockCommentsNest = false;
  DelimitedString delimited = DelimitedString::kNone;
  /// A single quote begins a character if another one follows it, and nothing otherwise.
  bool hasCharacters = false;
  /// A single quote can be part of a number, as in 1'000.
  bool hasDigitSeparators = false;
  /// A single quote can be part of a name, and a backslash before white space skips that up to the
  /// next backslash.
  bool isHaskell = false;
  /// A slash can begin a pattern, in which quotes are ordinary characters.
  bool hasPatterns = false;
  /// The strings of a file cannot be told if it does not begin with this, or contains one of
  /// these.
  std::u16string_view requiredStart = {};
  std::array<std::u16string_view, 2> uncertain = {};
};

/// Returns the syntax of the language that the extension of a file name tells; null for a language
/// whose strings cannot be told from its other text with certainty.
///
/// Among those are JavaScript and TypeScript (regular expressions, JSX), Ruby and Perl (patterns,
/// here-documents), SQL (dialects differ in escapes and comments), shells and YAML.
const StringSyntax* stringSyntaxOf(std::string_view path) noexcept;

}  // namespace tessera::check::scan
