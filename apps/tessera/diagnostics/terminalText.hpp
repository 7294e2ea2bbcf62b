#pragma once

#include <string>
#include <string_view>

namespace tessera::diagnostics {

/// Returns whether `unit` is a character that controls a terminal: U+0000 to U+001F, U+007F to
/// U+009F, the line and paragraph separators, and those that change the direction of text.
bool isControl(char16_t unit) noexcept;

/// Returns `text` (UTF-8) with each control character as an escape such as \n or \u001b.
/// What is not UTF-8 becomes U+FFFD.
std::string terminalText(std::string_view text);

/// Like `terminalText` of UTF-16, in quotes; quotes and backslashes are escaped too.
std::string quotedText(std::u16string_view text);

}  // namespace tessera::diagnostics
