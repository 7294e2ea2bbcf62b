#include "tessera/terminal/Glyph.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <utility>

#include "fl/i18n/utf16.hpp"
#include "tessera/characters/Character.hpp"
#include "tessera/characters/visibility.hpp"

namespace tessera::terminal {
namespace {

constexpr char32_t kJoiner = 0x200D;
constexpr char32_t kTextSelector = 0xFE0E;
constexpr char32_t kEmojiSelector = 0xFE0F;

/// A character of a line, with its properties.
struct Character : characters::Character {
  explicit Character(std::u16string_view rest) : characters::Character(characters::firstOf(rest)) {
    properties = utf8proc_get_property(static_cast<utf8proc_int32_t>(code));
  }

  std::size_t columns() const {
    return static_cast<std::size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(code)));
  }

  const utf8proc_property_t* properties;
};

/// Returns whether `character` is written as its number.
bool isHidden(const Character& character) {
  return characters::isInvisible(character.code) || characters::looksLikeBlank(character.code);
}

/// Returns whether `unit` is printable ASCII.
constexpr bool isPrintableAscii(char16_t unit) {
  return unit >= 0x20 && unit < 0x7F;
}

/// Returns whether `text` begins like the number of a character that cannot be seen.
bool looksLikeNumber(std::u16string_view text) {
  constexpr std::u16string_view kHex = u"0123456789ABCDEF";
  constexpr std::u16string_view kStart = u"<U+";
  if (!text.starts_with(kStart)) return false;
  const std::size_t end = text.find_first_not_of(kHex, kStart.size());
  return end != text.npos && end > kStart.size() && text[end] == u'>';
}

/// Returns the columns by which a character that follows `last` in a cluster makes it wider: for
/// most scripts its own width, as terminals add them up.
std::size_t columnsAdded(const Character& character, const Glyph& glyph, bool isEmoji) {
  if (character.code == kEmojiSelector) return glyph.columns < 2 ? 1 : 0;
  if (isEmoji) return 0;
  const auto boundClass = character.properties->boundclass;
  const bool isInSyllable =
      boundClass == UTF8PROC_BOUNDCLASS_V || boundClass == UTF8PROC_BOUNDCLASS_T;
  return isInSyllable ? 0 : character.columns();
}

/// Returns whether an invisible character after `last` in a cluster chooses how it looks. A second
/// selector or joiner has no such use, and the tags of a flag could spell any text.
bool isPartOfEmoji(const Character& character, char32_t last, bool isEmoji) {
  const bool isSelector = character.code == kTextSelector || character.code == kEmojiSelector;
  return (isSelector || (isEmoji && character.code == kJoiner)) &&
         characters::isPartOfShape(character.code, last);
}

}  // namespace

bool GlyphCursor::advance() {
  if (current.end == text.size()) return false;
  current.begin = current.end;
  current.text.clear();
  current.isNumber = false;
  takeFirst();
  column += current.columns;
  return true;
}

void GlyphCursor::takeFirst() {
  const std::u16string_view rest = text.substr(current.begin);
  if (isPrintableAscii(rest[0]) && (rest.size() == 1 || isPrintableAscii(rest[1]))) {
    if (rest[0] == u'<' && looksLikeNumber(rest)) return takeNumber(rest[0], 1);
    current.text += static_cast<char>(rest[0]);
    current.columns = 1;
    ++current.end;
    return;
  }
  const Character character(rest);
  if (character.code == U'\t') return takeTab();
  if (isHidden(character)) return takeNumber(character.code, character.units);
  takeCluster();
}

void GlyphCursor::takeTab() {
  current.columns = kTabColumns - column % kTabColumns;
  current.text.append(current.columns, ' ');
  ++current.end;
}

void GlyphCursor::takeNumber(char32_t code, std::size_t units) {
  current.text = '<' + characters::nameOf(code) + '>';
  current.columns = current.text.size();
  current.isNumber = true;
  current.end += units;
}

void GlyphCursor::takeCluster() {
  const Character first(text.substr(current.begin));
  const bool isEmoji = first.properties->boundclass == UTF8PROC_BOUNDCLASS_EXTENDED_PICTOGRAPHIC;
  // A combining character without a base takes one column.
  current.columns = std::max<std::size_t>(first.columns(), 1);
  current.end += first.units;
  char32_t last = first.code;
  utf8proc_int32_t state = 0;
  while (current.end < text.size()) {
    const Character next(text.substr(current.end));
    if (utf8proc_grapheme_break_stateful(static_cast<utf8proc_int32_t>(last),
                                         static_cast<utf8proc_int32_t>(next.code), &state)) {
      break;
    }
    if (isHidden(next) && !isPartOfEmoji(next, last, isEmoji)) break;
    current.columns += columnsAdded(next, current, isEmoji);
    current.end += next.units;
    last = next.code;
  }
  fl::i18n::appendUtf8(current.text, text.substr(current.begin, current.end - current.begin));
}

bool isShownAsItIs(std::u16string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    if (isPrintableAscii(text[at])) {
      if (text[at] == u'<' && looksLikeNumber(text.substr(at))) return false;
      ++at;
      continue;
    }
    const Character character(text.substr(at));
    if (isHidden(character)) return false;
    at += character.units;
  }
  return true;
}

std::vector<Glyph> layOut(std::u16string_view text) {
  std::vector<Glyph> glyphs;
  GlyphCursor cursor(text);
  while (cursor.advance()) glyphs.push_back(cursor.glyph());
  return glyphs;
}

}  // namespace tessera::terminal
