#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tessera::terminal {

/// Part of a line that a terminal shows as one character: a grapheme cluster, the spaces of a tab,
/// or a character that cannot be seen, as its number.
struct Glyph {
  /// The code units [begin, end) of the text.
  std::size_t begin = 0;
  std::size_t end = 0;
  /// The columns that it takes; at least 1.
  std::size_t columns = 1;
  /// What to write, UTF-8.
  std::string text;
  /// Whether `text` is a number such as <U+200B> instead of the character.
  bool isNumber = false;
};

/// Cuts a line without its ending into glyphs, one after the other, in linear time.
///
/// Tab stops are 8 columns apart, the first one at the start of the text. Control characters,
/// unpaired surrogates and characters that are invisible, change the direction of text, are spaces
/// other than U+0020 and U+3000, or whose width is not defined are written as <U+200B>. Text that
/// looks like such a number begins with <U+003C>, so that the two can be told apart. Joiners and
/// variation selectors are kept where they are part of an emoji.
class GlyphCursor {
 public:
  /// Borrows `text`.
  explicit GlyphCursor(std::u16string_view text) : text(text) {}

  /// Moves to the next glyph. Returns whether there is one.
  bool advance();
  /// The current glyph; valid until the next call of `advance`.
  const Glyph& glyph() const noexcept { return current; }

 private:
  void takeFirst();
  void takeTab();
  void takeNumber(char32_t code, std::size_t units);
  void takeCluster();

  std::u16string_view text;
  Glyph current;
  // The column after the current glyph.
  std::size_t column = 0;
};

/// The columns between tab stops.
inline constexpr std::size_t kTabColumns = 8;

/// Returns whether the texts of all glyphs of `text`, joined, are `text` itself. May be false for
/// text in which invisible characters are part of an emoji.
bool isShownAsItIs(std::u16string_view text);

/// Returns the glyphs of `text`, as `GlyphCursor` finds them.
std::vector<Glyph> layOut(std::u16string_view text);

}  // namespace tessera::terminal
