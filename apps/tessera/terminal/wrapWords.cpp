#include "tessera/terminal/wrapWords.hpp"

#include <algorithm>

#include "fl/i18n/ustring.hpp"
#include "tessera/terminal/Glyph.hpp"

namespace tessera::terminal {
namespace {

// Not as deep as the text of a source line.
constexpr std::size_t kIndent = 4;

}  // namespace

std::size_t widthOf(std::string_view text) {
  std::size_t columns = 0;
  for (const Glyph& glyph : layOut(fl::i18n::utf8_to_ustring(text))) columns += glyph.columns;
  return columns;
}

std::string wrapWords(std::string_view text, std::size_t column, std::size_t columns) {
  std::string rows;
  bool isFirst = true;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    const std::size_t width = widthOf(word);
    if (!isFirst && column + 1 + width > columns) {
      rows.append("\n").append(kIndent, ' ');
      column = kIndent;
    } else if (!isFirst) {
      rows += ' ';
      ++column;
    }
    rows += word;
    column += width;
    isFirst = false;
  }
  return rows;
}

}  // namespace tessera::terminal
