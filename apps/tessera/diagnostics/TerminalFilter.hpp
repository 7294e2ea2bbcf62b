#pragma once

#include <string>
#include <string_view>

namespace tessera::diagnostics {

/// Writes escapes for what nobody could see in a text that goes to a terminal.
///
/// Every format escapes ASCII controls by itself, and colours are ASCII, so these pass. JSON
/// contains other invisible characters as they are: they become escapes such as \u202e, which a
/// reader of JSON takes for the same character. Joiners and selectors pass where they are part of
/// an emoji or of a letter.
class TerminalFilter {
 public:
  /// Returns what is to be written of the next piece of a UTF-8 text; valid until the next call. A
  /// character that the end of the piece cuts is held back until the next call.
  std::string_view pass(std::string_view piece);

 private:
  std::string held;
  std::string passed;
  // The character before the next piece.
  char32_t last = 0;
};

}  // namespace tessera::diagnostics
