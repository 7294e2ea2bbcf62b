#include "tessera/diagnostics/terminalText.hpp"

#include "fl/i18n/ustring.hpp"
#include "fl/i18n/utf16.hpp"
#include "tessera/characters/Character.hpp"
#include "tessera/characters/visibility.hpp"

namespace tessera::diagnostics {
namespace {

using characters::Character;

void appendUnitEscape(std::string& text, char32_t unit) {
  constexpr std::string_view kHex = "0123456789abcdef";
  text += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) text += kHex[(unit >> shift) & 0xF];
}

/// An unpaired surrogate is written as U+FFFD, which can be seen.
bool isHidden(char32_t code, char32_t last) noexcept {
  return characters::isInvisible(code) && !characters::isSurrogate(code) &&
         !characters::isPartOfShape(code, last);
}

bool isSpecialInQuotes(char32_t code) noexcept {
  return code == U'"' || code == U'\\' || characters::looksLikeBlank(code);
}

/// Appends `units`, escaping what is hidden and the characters that `isSpecial` accepts.
template <class Predicate>
void appendEscaped(std::string& text, std::u16string_view units, Predicate isSpecial) {
  std::size_t begin = 0;
  char32_t last = 0;
  for (std::size_t i = 0; i < units.size();) {
    const Character character = characters::firstOf(units.substr(i));
    const bool isEscaped = isHidden(character.code, last) || isSpecial(character.code);
    if (isEscaped) {
      fl::i18n::appendUtf8(text, units.substr(begin, i - begin));
      appendEscape(text, character.code);
      begin = i + character.units;
    }
    last = isEscaped ? 0 : character.code;
    i += character.units;
  }
  fl::i18n::appendUtf8(text, units.substr(begin));
}

}  // namespace

void appendEscape(std::string& text, char32_t character) {
  constexpr std::string_view kNamed = "\b\t\n\f\r\"\\";
  if (character < 0x80) {
    if (const auto at = kNamed.find(static_cast<char>(character)); at != kNamed.npos) {
      text += '\\';
      text += "btnfr\"\\"[at];
      return;
    }
  }
  if (character < 0x10000) return appendUnitEscape(text, character);
  appendUnitEscape(text, 0xD800 + ((character - 0x10000) >> 10));
  appendUnitEscape(text, 0xDC00 + ((character - 0x10000) & 0x3FF));
}

bool isShownAsItIs(std::u16string_view text) noexcept {
  char32_t last = 0;
  while (!text.empty()) {
    const Character character = characters::firstOf(text);
    if (isHidden(character.code, last)) return false;
    last = character.code;
    text.remove_prefix(character.units);
  }
  return true;
}

std::string terminalText(std::string_view text) {
  std::string result;
  appendEscaped(result, fl::i18n::utf8_to_ustring(text), [](char32_t) { return false; });
  return result;
}

std::string quotedText(std::u16string_view text) {
  std::string result = "\"";
  appendEscaped(result, text, isSpecialInQuotes);
  return result += '"';
}

}  // namespace tessera::diagnostics
