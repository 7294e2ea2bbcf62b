#pragma once

#include <string_view>

namespace tessera::check::suspects {

/// Returns whether words consist of such units: ASCII letters and digits, "_", and what is beyond
/// ASCII.
bool isWordUnit(char16_t unit);

/// Returns whether an id or type without quotes consists of such units: those of words, "-" and
/// ".".
bool isNameUnit(char16_t unit);

/// Returns the word, or else the one character, at the start of `text`; empty for an empty text.
std::u16string_view wordAtStartOf(std::u16string_view text);

/// Returns whether both are equal, apart from the case of ASCII letters.
bool areEqualExceptCase(std::u16string_view a, std::u16string_view b);

/// Returns the "REM" that ends `text`, with blanks after it, in another case than "REM" and "rem";
/// empty if there is none.
std::u16string_view remarkAtEndOf(std::u16string_view text);

/// Returns whether `text`, which is not empty, begins with a range, perhaps in other brackets.
bool looksLikeRange(std::u16string_view text);

/// Returns whether `text`, which is not empty, begins with data whose "{" is missing or replaced.
bool looksLikeData(std::u16string_view text);

/// Returns `rest`, which follows a name, without a "-", "." or "_" that was written for the
/// separator at its start.
std::u16string_view afterSeparator(std::u16string_view rest);

/// Returns what the JSON lexer expected where it stopped for `reason`; `reason` itself if that was
/// nothing in particular.
std::string_view expectedInJson(std::string_view reason);

}  // namespace tessera::check::suspects
