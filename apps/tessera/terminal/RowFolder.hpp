#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/terminal/Glyph.hpp"

namespace tessera::terminal {

/// The code units [begin, end) of a line, which are shown in a style of their own.
struct MarkedPart {
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Consecutive text of a row that is shown in one style.
struct RowSpan {
  static constexpr std::size_t kNoPart = std::numeric_limits<std::size_t>::max();

  /// The index of the part that the text is in, or kNoPart.
  std::size_t part = kNoPart;
  /// Whether the text is the number of a character that cannot be seen.
  bool isNumber = false;
  /// Whether the part ends with this text.
  bool endsPart = false;
  std::size_t beginByte = 0;
  std::size_t endByte = 0;
  std::size_t beginColumn = 0;
  std::size_t endColumn = 0;
};

/// A row of a folded line, borrowed. Without text it has no spans.
struct Row {
  /// What to write, UTF-8.
  std::string_view text;
  std::span<const RowSpan> spans;
  std::size_t columns = 0;
};

/// Takes the rows of a folded line.
class RowSink {
 public:
  virtual ~RowSink() = default;

  virtual void takeRow(const Row& row) = 0;
};

/// Folds a line into rows that have at most a number of columns.
///
/// A row ends after a blank or a comma if one is in its second half, else where it is full. The
/// texts of the rows, joined, are the texts of the line's glyphs. Linear; keeps one row.
class RowFolder {
 public:
  static constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

  struct Limits {
    std::size_t first = kUnlimited;
    std::size_t others = kUnlimited;
  };

  /// Limits below 2 columns, the widest character, count as 2. Borrows `sink`.
  RowFolder(const Limits& limits, RowSink& sink);

  /// Passes the rows of `text`, at least one, to the sink. The parts are in order and do not
  /// overlap.
  void fold(std::u16string_view text, std::span<const MarkedPart> parts);

 private:
  /// Where a row may end.
  struct Break {
    std::size_t byte = 0;
    std::size_t column = 0;
  };

  void add(std::u16string_view text, const Glyph& glyph);
  void addWideGlyph(std::u16string_view text, const Glyph& glyph);
  void append(std::string_view glyphs, std::size_t columns, bool isNumber);
  void breakRow();
  void passRow();

  std::size_t limit;
  std::size_t nextLimit;
  RowSink& sink;
  // The part that the current glyph is in, or RowSpan::kNoPart.
  std::size_t part = RowSpan::kNoPart;
  std::string rowText;
  std::vector<RowSpan> spans;
  std::size_t column = 0;
  // After the last blank or comma of the row.
  Break lastBreak;
};

}  // namespace tessera::terminal
