#pragma once

#include <string>
#include <string_view>

namespace tessera::diagnostics {

/// Returns `text` (UTF-8) with each invisible character (`characters::isInvisible`) as an escape
/// such as \n or \u001b, one beyond U+FFFF as two. Joiners and selectors stay where they are part
/// of an emoji or of a letter. What is not UTF-8 becomes U+FFFD.
std::string terminalText(std::string_view text);

/// Appends the escape of a character that is not an unpaired surrogate.
void appendEscape(std::string& text, char32_t character);

/// Returns whether `terminalText` of this text, as UTF-8, has no escape.
bool isShownAsItIs(std::u16string_view text) noexcept;

/// Like `terminalText` of UTF-16, in quotes; quotes, backslashes and the spaces that look like a
/// blank (`characters::looksLikeBlank`) are escaped too. Unpaired surrogates become U+FFFD.
std::string quotedText(std::u16string_view text);

}  // namespace tessera::diagnostics
