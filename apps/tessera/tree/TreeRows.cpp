#include "tessera/tree/TreeRows.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <limits>
#include <string>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "fl/i18n/utf16.hpp"
#include "tessera/terminal/wrapWords.hpp"

namespace tessera::tree {
namespace {

constexpr std::size_t kFewestNumberColumns = 4;
// The bracket, with a blank on both sides.
constexpr std::size_t kBracketColumns = 3;

constexpr bool isPrintableAscii(char16_t unit) noexcept {
  return unit >= 0x20 && unit < 0x7F;
}

/// Appends the rows of a note. The part that is bold is the only marked one.
class NoteRows final : public terminal::RowSink {
 public:
  NoteRows(TreeRows& rows, std::size_t indent, std::string_view color)
      : rows(rows), indent(indent), color(color) {}

  void takeRow(const terminal::Row& row) override {
    rows.beginRow(TreeRows::Start::kFirst, true);
    rows.target().append(indent, ' ');
    for (const terminal::RowSpan& span : row.spans) {
      const auto text = row.text.substr(span.beginByte, span.endByte - span.beginByte);
      const bool isBold = span.part != terminal::RowSpan::kNoPart;
      rows.appendColored(text, isBold ? "1;" + std::string(color) : std::string(color));
    }
    rows.endRow();
    if (!std::exchange(isIndented, true)) indent += TreeRows::kHangingIndent;
  }

 private:
  TreeRows& rows;
  std::size_t indent;
  std::string_view color;
  bool isIndented = false;
};

/// Appends the rows of a heading.
class HeadingRows final : public terminal::RowSink {
 public:
  explicit HeadingRows(TreeRows& rows) : rows(rows) {}

  void takeRow(const terminal::Row& row) override {
    rows.target().append(std::exchange(indent, TreeRows::kHangingIndent), ' ');
    rows.appendColored(row.text, colors::kFile);
    rows.endRow();
  }

 private:
  TreeRows& rows;
  std::size_t indent = 0;
};

}  // namespace

void TreeRows::appendHeading(std::string_view name) {
  using terminal::RowFolder;
  RowFolder::Limits limits{style.columns, style.columns};
  if (style.columns != RowFolder::kUnlimited) limits.others -= kHangingIndent;
  HeadingRows heading(*this);
  RowFolder(limits, heading).fold(fl::i18n::utf8_to_ustring(name), {});
}

void TreeRows::beginLines(std::uint64_t lineCount) {
  numberColumns = std::max(std::to_string(lineCount).size(), kFewestNumberColumns);
  bracket = Bracket::kNone;
  number = 0;
}

std::size_t TreeRows::columns() const noexcept {
  if (style.columns == terminal::RowFolder::kUnlimited) return style.columns;
  const std::size_t taken = numberColumns + kBracketColumns;
  return style.columns > taken ? style.columns - taken : 0;
}

void TreeRows::appendColored(std::string_view content, std::string_view color) {
  if (!style.color || content.empty()) {
    text += content;
    return;
  }
  text.append("\x1b[").append(color).append("m").append(content).append("\x1b[0m");
}

std::string_view TreeRows::bracketText() const noexcept {
  constexpr std::array<std::string_view, 4> kAscii{" ", "/", "|", "\\"};
  constexpr std::array<std::string_view, 4> kUnicode{" ", "┌", "│", "└"};
  const auto index = static_cast<std::size_t>(bracket);
  return style.symbols == Symbols::kUnicode ? kUnicode[index] : kAscii[index];
}

void TreeRows::appendBracket(bool hasText) {
  if (bracket == Bracket::kNone) {
    if (hasText) text.append(kBracketColumns, ' ');
    return;
  }
  text += ' ';
  appendColored(bracketText(), colors::kTask);
  if (hasText) text += ' ';
  bracket =
      bracket == Bracket::kTop || bracket == Bracket::kInside ? Bracket::kInside : Bracket::kNone;
}

void TreeRows::beginRow(Start start, bool hasText) {
  if (number != 0) {
    std::array<char, std::numeric_limits<std::uint64_t>::digits10 + 1> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
    const std::string_view shown(digits.data(), static_cast<std::size_t>(end - digits.data()));
    if (shown.size() < numberColumns) text.append(numberColumns - shown.size(), ' ');
    appendColored(shown, colors::kNumber);
    number = 0;
  } else if (start == Start::kContinued) {
    text.append(numberColumns - 1, ' ');
    appendColored(style.symbols == Symbols::kUnicode ? "↪" : ">", colors::kNumber);
  } else if (hasText || bracket != Bracket::kNone) {
    text.append(numberColumns, ' ');
  }
  appendBracket(hasText);
}

bool TreeRows::appendPlainRow(std::u16string_view content) {
  const std::size_t tab = content.find(u'\t');
  if (tab != content.npos) return appendTabbedRow(content, tab);
  if (columns() != terminal::RowFolder::kUnlimited) {
    // The number of other characters does not tell how many columns they take.
    if (content.size() > columns() || !std::ranges::all_of(content, isPrintableAscii)) return false;
  }
  if (!terminal::isShownAsItIs(content)) return false;
  beginRow(Start::kFirst, !content.empty());
  fl::i18n::appendUtf8(text, content);
  endRow();
  return true;
}

/// Like `appendPlainRow`, for printable ASCII and tabs, of which the first is at `tab`.
bool TreeRows::appendTabbedRow(std::u16string_view content, std::size_t tab) {
  const auto isKnown = [](char16_t unit) { return unit == u'\t' || isPrintableAscii(unit); };
  if (!std::ranges::all_of(content, isKnown)) return false;
  std::string shown;
  for (std::size_t at = 0; at < content.size(); tab = content.find(u'\t', at)) {
    const std::u16string_view part = content.substr(at, tab - at);
    if (!terminal::isShownAsItIs(part)) return false;
    fl::i18n::appendUtf8(shown, part);
    at += part.size();
    if (at == content.size()) break;
    shown.append(terminal::kTabColumns - shown.size() % terminal::kTabColumns, ' ');
    ++at;
  }
  if (shown.size() > columns()) return false;
  beginRow(Start::kFirst, true);
  text += shown;
  endRow();
  return true;
}

void TreeRows::appendNote(std::size_t indent, const Note& note) {
  using terminal::RowFolder;
  RowFolder::Limits limits;
  const std::size_t available = columns();
  if (available != RowFolder::kUnlimited) {
    if (indent + terminal::widthOf(note.text) > available) indent = std::min(indent, available / 3);
    limits.first = available - indent;
    limits.others = limits.first - std::min(kHangingIndent, limits.first);
  }
  const terminal::MarkedPart bold{0, note.boldBytes};
  NoteRows sink(*this, indent, note.color);
  RowFolder(limits, sink).fold(fl::i18n::utf8_to_ustring(note.text), {&bold, 1});
}

}  // namespace tessera::tree
