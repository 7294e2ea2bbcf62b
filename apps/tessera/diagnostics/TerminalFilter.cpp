#include "tessera/diagnostics/TerminalFilter.hpp"

#include <algorithm>
#include <cstddef>

#include "fl/i18n/ustring.hpp"
#include "fl/i18n/utf16.hpp"
#include "tessera/characters/Character.hpp"
#include "tessera/characters/visibility.hpp"
#include "tessera/diagnostics/terminalText.hpp"

namespace tessera::diagnostics {
namespace {

bool isAscii(std::string_view text) noexcept {
  return std::ranges::all_of(text,
                             [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

/// Returns how many bytes a character takes whose first byte is `byte`; 0 for other bytes.
std::size_t lengthOf(char byte) noexcept {
  const auto value = static_cast<unsigned char>(byte);
  if (value < 0x80) return 1;
  if (value < 0xC0) return 0;
  return value < 0xE0 ? 2 : value < 0xF0 ? 3 : 4;
}

/// Returns how many bytes at the end of `text` are the beginning of a character.
std::size_t countCut(std::string_view text) noexcept {
  constexpr std::size_t kLongestCut = 3;
  for (std::size_t count = 1; count <= std::min(kLongestCut, text.size()); ++count) {
    const std::size_t length = lengthOf(text[text.size() - count]);
    if (length != 0) return length > count ? count : 0;
  }
  return 0;
}

}  // namespace

std::string_view TerminalFilter::pass(std::string_view piece) {
  if (held.empty() && isAscii(piece)) {
    if (!piece.empty()) last = static_cast<unsigned char>(piece.back());
    return piece;
  }
  held += piece;
  const std::size_t cut = countCut(held);
  const auto text = fl::i18n::utf8_to_ustring(std::string_view(held).substr(0, held.size() - cut));
  held.erase(0, held.size() - cut);
  passed.clear();
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size();) {
    const auto character = characters::firstOf(std::u16string_view(text).substr(at));
    const bool isKept = character.code < 0x80 || !characters::isInvisible(character.code) ||
                        characters::isPartOfShape(character.code, last);
    if (!isKept) {
      fl::i18n::appendUtf8(passed, std::u16string_view(text).substr(begin, at - begin));
      appendEscape(passed, character.code);
      begin = at + character.units;
    }
    last = isKept ? character.code : 0;
    at += character.units;
  }
  fl::i18n::appendUtf8(passed, std::u16string_view(text).substr(begin));
  return passed;
}

}  // namespace tessera::diagnostics
