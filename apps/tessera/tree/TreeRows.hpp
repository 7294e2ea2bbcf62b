#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tessera/terminal/RowFolder.hpp"
#include "tessera/tree/TreeStyle.hpp"

namespace tessera::tree {

/// The colours of a tree: parameters of the terminal sequence that selects graphic renditions.
namespace colors {
inline constexpr std::string_view kFile = "1";
inline constexpr std::string_view kNumber = "2";
inline constexpr std::string_view kTask = "32";
inline constexpr std::string_view kAnchor = "33";
inline constexpr std::string_view kOutput = "36";
inline constexpr std::string_view kControl = "35";
inline constexpr std::string_view kOther = "34";
inline constexpr std::string_view kFailure = "31";
inline constexpr std::string_view kDetail = "2";
}  // namespace colors

/// Text about a line, UTF-8 without control characters.
struct Note {
  std::string text;
  /// One of `colors`.
  std::string_view color;
  /// How many bytes at the start are bold; ASCII.
  std::size_t boldBytes = 0;
};

/// Writes rows of a tree: the line's number, the bracket of a task, and text.
///
///     12 | text of line 12
///        |   a note about it
class TreeRows {
 public:
  /// Borrows `text`, which rows are appended to.
  TreeRows(std::string& text, const TreeStyle& style) : text(text), style(style) {}

  /// Appends the name of a file.
  void appendHeading(std::string_view name);
  /// The lines of a file follow. Their numbers have as many columns as `lineCount` needs, at least
  /// a few.
  void beginLines(std::uint64_t lineCount);

  /// What follows is not about a line: no bracket is beside it.
  void endLines() noexcept { bracket = Bracket::kNone; }

  /// The next row begins with `lineNumber`.
  void setNumber(std::uint64_t lineNumber) noexcept { number = lineNumber; }

  /// The next rows are at the start of a task.
  void openBracket() noexcept { bracket = Bracket::kTop; }
  /// The next row is the last of the task.
  void closeBracket() noexcept { bracket = Bracket::kBottom; }

  /// Appends a row with `content` if that is simple: it fits, and nothing in it needs to be laid
  /// out. Else returns false and appends nothing. Most lines are simple, and this is several times
  /// as fast as laying them out.
  bool appendPlainRow(std::u16string_view content);
  /// kContinued: the row continues the text of a line.
  enum class Start { kFirst, kContinued };
  /// Appends what precedes the content of a row.
  void beginRow(Start start, bool hasText);
  void endRow() { text += '\n'; }

  /// Appends rows with `note` after `indent` columns, or fewer if that leaves too little room.
  void appendNote(std::size_t indent, const Note& note);

  /// The columns that the text of a row may have.
  std::size_t columns() const noexcept;
  /// The columns by which the rows of a line after its first one are indented.
  static constexpr std::size_t kHangingIndent = 2;

  const TreeStyle& rowStyle() const noexcept { return style; }
  std::string& target() noexcept { return text; }
  /// Appends `content`, in that colour if the style has colours.
  void appendColored(std::string_view content, std::string_view color);

 private:
  enum class Bracket { kNone, kTop, kInside, kBottom };

  bool appendTabbedRow(std::u16string_view content, std::size_t tab);
  void appendBracket(bool hasText);
  std::string_view bracketText() const noexcept;

  std::string& text;
  TreeStyle style;
  std::size_t numberColumns = 0;
  // The number that the next row begins with, or 0.
  std::uint64_t number = 0;
  Bracket bracket = Bracket::kNone;
};

}  // namespace tessera::tree
