#include "tessera/html/HtmlText.hpp"

#include "fl/i18n/ustring.hpp"
#include "fl/i18n/utf16.hpp"
#include "foundation/json/format.hpp"
#include "tessera/characters/Character.hpp"
#include "tessera/characters/visibility.hpp"

namespace tessera::html {

using characters::Character;

namespace {

/// Returns whether `unit` is ASCII and needs no escape.
bool isCopied(char16_t unit) noexcept {
  if (unit < 0x20) return unit == u'\t' || unit == u'\n';
  return unit < 0x7F && unit != u'<' && unit != u'>' && unit != u'&';
}

/// Returns whether `character` is shown by its number: it has no shape, or changes the direction
/// of the text around it. An unpaired surrogate is shown as U+FFFD.
bool isShownByNumber(char32_t character, char32_t last) noexcept {
  return characters::isInvisible(character) && !characters::isSurrogate(character) &&
         !characters::isPartOfShape(character, last);
}

/// Returns how many units at the start of `text` are characters beyond ASCII that are converted to
/// UTF-8. `last` is the character before, and becomes the last one of these.
std::size_t countConverted(std::u16string_view text, char32_t& last) noexcept {
  std::size_t count = 0;
  while (count < text.size() && text[count] >= 0xA0) {
    const Character character = characters::firstOf(text.substr(count));
    if (isShownByNumber(character.code, last)) break;
    last = character.code;
    count += character.units;
  }
  return count;
}

void appendSpecial(std::string& output, char32_t character) {
  switch (character) {
    case U'<':
      output += "&lt;";
      return;
    case U'>':
      output += "&gt;";
      return;
    case U'&':
      output += "&amp;";
      return;
    default:
      output.append("<i class=u>").append(characters::nameOf(character)).append("</i>");
  }
}

}  // namespace

void HtmlText::append(std::u16string_view text) {
  char32_t last = 0;
  while (!text.empty()) {
    if (isCopied(text[0])) {
      output += static_cast<char>(text[0]);
      last = text[0];
      text.remove_prefix(1);
    } else if (const std::size_t count = countConverted(text, last); count != 0) {
      fl::i18n::appendUtf8(output, text.substr(0, count));
      text.remove_prefix(count);
    } else {
      const Character character = characters::firstOf(text);
      appendSpecial(output, character.code);
      last = 0;
      text.remove_prefix(character.units);
    }
  }
}

void HtmlText::append(std::string_view utf8) {
  append(std::u16string_view(fl::i18n::utf8_to_ustring(utf8)));
}

void HtmlText::addNumber(double number) {
  foundation::json::appendNumber(output, number);
}

void HtmlText::addPlain(std::string_view utf8) {
  const std::u16string text = fl::i18n::utf8_to_ustring(utf8);
  std::u16string shown;
  char32_t last = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Character character = characters::firstOf(std::u16string_view(text).substr(at));
    if (isShownByNumber(character.code, last)) {
      shown += u'\uFFFD';
      last = 0;
    } else {
      shown.append(text, at, character.units);
      last = character.code;
    }
    at += character.units;
  }
  append(std::u16string_view(shown));
}

}  // namespace tessera::html
