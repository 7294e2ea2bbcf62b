#include "tessera/terminal/wrapWords.hpp"

#include <algorithm>

#include "fl/i18n/ustring.hpp"
#include "tessera/terminal/Glyph.hpp"

namespace tessera::terminal {

std::size_t widthOf(std::string_view text) {
  std::size_t columns = 0;
  for (const Glyph& glyph : layOut(fl::i18n::utf8_to_ustring(text))) columns += glyph.columns;
  return columns;
}

std::string wrapWords(std::string_view text, std::size_t column, std::size_t columns,
                      std::size_t indent) {
  std::string rows;
  bool isFirst = true;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    const std::size_t width = widthOf(word);
    if (!isFirst && column + 1 + width > columns) {
      rows.append("\n").append(indent, ' ');
      column = indent;
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
