#include "tessera/diagnostics/terminalText.hpp"

#include "fl/i18n/ustring.hpp"
#include "fl/i18n/utf16.hpp"

namespace tessera::diagnostics {
namespace {

void appendEscape(std::string& text, char16_t unit) {
  constexpr std::string_view kHex = "0123456789abcdef";
  constexpr std::u16string_view kNamed = u"\b\t\n\f\r\"\\";
  if (const std::size_t at = kNamed.find(unit); at != kNamed.npos) {
    text += '\\';
    text += "btnfr\"\\"[at];
    return;
  }
  text += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) text += kHex[(unit >> shift) & 0xF];
}

/// Appends `units`, escaping what `mustEscape` picks.
template <typename Predicate>
void appendEscaped(std::string& text, std::u16string_view units, Predicate mustEscape) {
  std::size_t begin = 0;
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (!mustEscape(units[i])) continue;
    fl::i18n::appendUtf8(text, units.substr(begin, i - begin));
    appendEscape(text, units[i]);
    begin = i + 1;
  }
  fl::i18n::appendUtf8(text, units.substr(begin));
}

}  // namespace

bool isControl(char16_t unit) noexcept {
  if (unit < 0x20 || (unit >= 0x7F && unit <= 0x9F)) return true;
  return unit == 0x061C || unit == 0x200E || unit == 0x200F || (unit >= 0x2028 && unit <= 0x202E) ||
         (unit >= 0x2066 && unit <= 0x2069);
}

std::string terminalText(std::string_view text) {
  std::string result;
  appendEscaped(result, fl::i18n::utf8_to_ustring(text), isControl);
  return result;
}

std::string quotedText(std::u16string_view text) {
  std::string result = "\"";
  appendEscaped(result, text,
                [](char16_t unit) { return unit == u'"' || unit == u'\\' || isControl(unit); });
  return result += '"';
}

}  // namespace tessera::diagnostics
