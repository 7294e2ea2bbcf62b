#include "tessera/html/HtmlText.hpp"

#include <algorithm>
#include <array>

#include "fl/i18n/ustring.hpp"
#include "fl/i18n/utf16.hpp"
#include "foundation/json/format.hpp"

namespace tessera::html {
namespace {

struct UnitInterval {
  char16_t first;
  char16_t last;
};

/// Characters that have no shape, that change the direction of the text around them, or that HTML
/// does not allow: their numbers are shown. Tabs and line feeds are white space.
constexpr std::array kShownByNumber = std::to_array<UnitInterval>({{0x00, 0x08},
                                                                   {0x0B, 0x1F},
                                                                   {0x7F, 0x9F},
                                                                   {0x200B, 0x200B},
                                                                   {0x200E, 0x200F},
                                                                   {0x2028, 0x202E},
                                                                   {0x2060, 0x206F},
                                                                   {0xFDD0, 0xFDEF},
                                                                   {0xFEFF, 0xFEFF},
                                                                   {0xFFF9, 0xFFFB},
                                                                   {0xFFFE, 0xFFFF}});

bool isShownByNumber(char16_t unit) noexcept {
  return std::ranges::any_of(kShownByNumber, [unit](const UnitInterval& interval) {
    return unit >= interval.first && unit <= interval.last;
  });
}

/// Returns whether `unit` is ASCII and needs no escape.
bool isCopied(char16_t unit) noexcept {
  if (unit < 0x20) return unit == u'\t' || unit == u'\n';
  return unit < 0x7F && unit != u'<' && unit != u'>' && unit != u'&';
}

/// Returns whether `unit` is part of a run that is converted to UTF-8.
bool isConverted(char16_t unit) noexcept {
  return unit >= 0xA0 && !isShownByNumber(unit);
}

std::string nameOfUnit(char16_t unit) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string name = "U+";
  for (const int shift : {12, 8, 4, 0}) name += kDigits[(unit >> shift) & 0xFU];
  return name;
}

void appendSpecial(std::string& output, char16_t unit) {
  switch (unit) {
    case u'<':
      output += "&lt;";
      return;
    case u'>':
      output += "&gt;";
      return;
    case u'&':
      output += "&amp;";
      return;
    default:
      output.append("<i class=u>").append(nameOfUnit(unit)).append("</i>");
  }
}

}  // namespace

void HtmlText::append(std::u16string_view text) {
  const auto* unit = text.begin();
  while (unit != text.end()) {
    if (isCopied(*unit)) {
      output += static_cast<char>(*unit++);
      continue;
    }
    const auto* const end = std::find_if_not(unit, text.end(), isConverted);
    if (end == unit) {
      appendSpecial(output, *unit++);
      continue;
    }
    fl::i18n::appendUtf8(output, {unit, static_cast<std::size_t>(end - unit)});
    unit = end;
  }
}

void HtmlText::append(std::string_view utf8) {
  append(std::u16string_view(fl::i18n::utf8_to_ustring(utf8)));
}

void HtmlText::addNumber(double number) {
  foundation::json::appendNumber(output, number);
}

void HtmlText::addPlain(std::string_view utf8) {
  std::u16string text = fl::i18n::utf8_to_ustring(utf8);
  std::ranges::replace_if(text, isShownByNumber, u'\uFFFD');
  append(std::u16string_view(text));
}

}  // namespace tessera::html
