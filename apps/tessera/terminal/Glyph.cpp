#include "tessera/terminal/Glyph.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <utility>

#include "fl/i18n/utf16.hpp"

namespace tessera::terminal {
namespace {

constexpr std::size_t kTabColumns = 8;
constexpr char32_t kTextSelector = 0xFE0E;
constexpr char32_t kEmojiSelector = 0xFE0F;

using Properties = utf8proc_property_t;

/// One character of a line.
struct Character {
  explicit Character(std::u16string_view rest) : code(rest[0]) {
    if (isHalf(code, 0xD800) && rest.size() > 1 && isHalf(rest[1], 0xDC00)) {
      units = 2;
      code = 0x10000 + ((code - 0xD800) << 10) + (rest[1] - 0xDC00);
    }
    properties = utf8proc_get_property(static_cast<utf8proc_int32_t>(code));
  }

  static bool isHalf(char32_t unit, char32_t first) { return (unit & 0xFC00) == first; }

  std::size_t columns() const {
    return static_cast<std::size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(code)));
  }

  char32_t code;
  std::size_t units = 1;
  const Properties* properties;
};

bool isSpaceThatIsShown(char32_t code) {
  return code == U' ' || code == 0x3000;
}

/// Returns whether `character` is written as its number.
bool isHidden(const Character& character) {
  switch (character.properties->category) {
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_CF:
    case UTF8PROC_CATEGORY_CN:
    case UTF8PROC_CATEGORY_CO:
    case UTF8PROC_CATEGORY_CS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return true;
    case UTF8PROC_CATEGORY_ZS:
      return !isSpaceThatIsShown(character.code);
    default:
      // The braille pattern without dots is as blank as a space.
      return character.properties->ignorable || character.code == 0x2800;
  }
}

std::string numberOf(char32_t code) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string digits;
  for (char32_t rest = code; rest != 0 || digits.size() < 4; rest >>= 4) {
    digits.insert(digits.begin(), kHex[rest & 0xF]);
  }
  return "<U+" + digits + ">";
}

/// Cuts a line into glyphs.
class Layout {
 public:
  explicit Layout(std::u16string_view text) : text(text) {}

  std::vector<Glyph> glyphs() {
    for (std::size_t at = 0; at < text.size();) {
      const Character character(text.substr(at));
      add(character, at);
      at += character.units;
    }
    return std::move(found);
  }

 private:
  void add(const Character& character, std::size_t at) {
    const bool joins = joinsCluster(character);
    if (character.code == U'\t') {
      const std::size_t columns = kTabColumns - column % kTabColumns;
      return addAlone({at, at + 1, columns, std::string(columns, ' '), false});
    }
    if (joins && (!isHidden(character) || isPartOfEmoji(character))) return extend(character);
    if (isHidden(character)) {
      const std::string number = numberOf(character.code);
      return addAlone({at, at + character.units, number.size(), number, true});
    }
    begin(character, at);
  }

  /// Returns whether there is no boundary between the cluster and `character`.
  bool joinsCluster(const Character& character) {
    if (!hasCluster) return false;
    return !utf8proc_grapheme_break_stateful(static_cast<utf8proc_int32_t>(last),
                                             static_cast<utf8proc_int32_t>(character.code), &state);
  }

  /// Returns whether an invisible character after the cluster chooses how it looks. A second
  /// selector has no such use.
  bool isPartOfEmoji(const Character& character) const {
    const bool isSelector = character.code == kTextSelector || character.code == kEmojiSelector;
    if (isSelector) return last != kTextSelector && last != kEmojiSelector;
    return isEmoji && (character.properties->boundclass == UTF8PROC_BOUNDCLASS_ZWJ ||
                       character.properties->boundclass == UTF8PROC_BOUNDCLASS_EXTEND);
  }

  void begin(const Character& character, std::size_t at) {
    const auto boundClass = character.properties->boundclass;
    isEmoji = boundClass == UTF8PROC_BOUNDCLASS_EXTENDED_PICTOGRAPHIC;
    hasCluster = true;
    state = 0;
    last = character.code;
    // A combining character without a base takes one column.
    append({at, at + character.units, std::max<std::size_t>(character.columns(), 1),
            utf8Of(at, character.units), false});
  }

  void extend(const Character& character) {
    Glyph& glyph = found.back();
    glyph.text += utf8Of(glyph.end, character.units);
    glyph.end += character.units;
    widen(glyph, columnsAdded(character, glyph));
    last = character.code;
  }

  /// Returns the columns by which `character` makes its cluster wider: for most scripts its own
  /// width, as terminals add them up.
  std::size_t columnsAdded(const Character& character, const Glyph& glyph) const {
    if (character.code == kEmojiSelector) return glyph.columns < 2 ? 1 : 0;
    if (isEmoji) return 0;
    const auto boundClass = character.properties->boundclass;
    const bool isInSyllable =
        boundClass == UTF8PROC_BOUNDCLASS_V || boundClass == UTF8PROC_BOUNDCLASS_T;
    return isInSyllable ? 0 : character.columns();
  }

  void widen(Glyph& glyph, std::size_t columns) {
    glyph.columns += columns;
    column += columns;
  }

  void addAlone(Glyph glyph) {
    hasCluster = false;
    append(std::move(glyph));
  }

  void append(Glyph glyph) {
    column += glyph.columns;
    found.push_back(std::move(glyph));
  }

  std::string utf8Of(std::size_t at, std::size_t units) const {
    std::string utf8;
    fl::i18n::appendUtf8(utf8, text.substr(at, units));
    return utf8;
  }

  std::u16string_view text;
  std::vector<Glyph> found;
  // The column after the last glyph.
  std::size_t column = 0;
  // The last glyph, if it is a cluster: its last character, and whether it begins with an emoji.
  bool hasCluster = false;
  bool isEmoji = false;
  char32_t last = 0;
  utf8proc_int32_t state = 0;
};

}  // namespace

std::vector<Glyph> layOut(std::u16string_view text) {
  return Layout(text).glyphs();
}

}  // namespace tessera::terminal
