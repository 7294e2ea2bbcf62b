#include "tessera/terminal/Excerpt.hpp"

#include <algorithm>
#include <vector>

#include "tessera/terminal/Glyph.hpp"

namespace tessera::terminal {
namespace {

constexpr std::size_t kNumberColumns = 5;
constexpr std::string_view kBar = " | ";
constexpr std::string_view kCut = "...";
constexpr std::size_t kFewestColumns = 20;
// What is laid out on each side of the mark, in code units per column: enough for most
// text, and little of a very long line.
constexpr std::size_t kUnitsPerColumn = 2;

constexpr std::string_view kCaretColor = "\x1b[1;32m";
constexpr std::string_view kNumberColor = "\x1b[7m";
constexpr std::string_view kPlain = "\x1b[0m";

bool isSecondHalf(std::u16string_view text, std::size_t at) {
  return at > 0 && at < text.size() && (text[at] & 0xFC00) == 0xDC00 &&
         (text[at - 1] & 0xFC00) == 0xD800;
}

/// The glyphs around the mark, and which of them are shown.
class Window {
 public:
  Window(const MarkedLine& line, std::size_t columns);

  void appendText(std::string& row, bool color) const;
  void appendCarets(std::string& row) const;

 private:
  void layOutAround(const MarkedLine& line, std::size_t columns);
  void markGlyphs(const MarkedLine& line);
  void choose(std::size_t columns);
  bool fits(std::size_t columns) const;
  std::size_t columnsOf(std::size_t first, std::size_t last) const;

  std::vector<Glyph> glyphs;
  // Whether the line has more text before and after the glyphs.
  bool cutBefore = false;
  bool cutAfter = false;
  // The glyphs [markBegin, markEnd) are marked, [begin, end) are shown.
  std::size_t markBegin = 0;
  std::size_t markEnd = 0;
  std::size_t begin = 0;
  std::size_t end = 0;
};

Window::Window(const MarkedLine& line, std::size_t columns) {
  layOutAround(line, columns);
  markGlyphs(line);
  choose(columns);
}

void Window::layOutAround(const MarkedLine& line, std::size_t columns) {
  const std::size_t reach = columns * kUnitsPerColumn;
  const std::size_t mark = std::min(line.begin, line.text.size());
  std::size_t first = mark > reach ? mark - reach : 0;
  std::size_t last = std::min(mark + reach, line.text.size());
  if (isSecondHalf(line.text, first)) --first;
  if (isSecondHalf(line.text, last)) ++last;
  glyphs = layOut(line.text.substr(first, last - first));
  for (Glyph& glyph : glyphs) {
    glyph.begin += first;
    glyph.end += first;
  }
  cutBefore = first > 0;
  cutAfter = last < line.text.size();
}

void Window::markGlyphs(const MarkedLine& line) {
  const auto endsAfter = [](std::size_t unit) {
    return [unit](const Glyph& glyph) { return glyph.end > unit; };
  };
  const auto at = [&](auto found) { return static_cast<std::size_t>(found - glyphs.begin()); };
  markBegin = at(std::ranges::find_if(glyphs, endsAfter(line.begin)));
  markEnd = markBegin;
  while (markEnd < glyphs.size() && glyphs[markEnd].begin < line.end) ++markEnd;
  if (markEnd == markBegin && markBegin < glyphs.size()) ++markEnd;
}

std::size_t Window::columnsOf(std::size_t first, std::size_t last) const {
  std::size_t columns = 0;
  for (std::size_t i = first; i < last; ++i) columns += glyphs[i].columns;
  return columns;
}

/// Chooses as many glyphs as fit: those of the mark from its first one on, then on both sides.
void Window::choose(std::size_t columns) {
  const std::size_t available = columns - 2 * kCut.size();
  if (!cutBefore && !cutAfter && columnsOf(0, glyphs.size()) <= columns) {
    end = glyphs.size();
    return;
  }
  begin = end = std::min(markBegin, glyphs.size());
  std::size_t used = 0;
  const auto takeNext = [&](std::size_t limit) {
    if (end == limit || used + glyphs[end].columns > available) return false;
    used += glyphs[end++].columns;
    return true;
  };
  const auto takePrevious = [&] {
    if (begin == 0 || used + glyphs[begin - 1].columns > available) return false;
    used += glyphs[--begin].columns;
    return true;
  };
  while (takeNext(markEnd)) {
  }
  bool more = true;
  while (more) {
    const bool before = takePrevious();
    more = takeNext(glyphs.size()) || before;
  }
  cutBefore = cutBefore || begin > 0;
  cutAfter = cutAfter || end < glyphs.size();
}

void Window::appendText(std::string& row, bool color) const {
  if (cutBefore) row += kCut;
  for (std::size_t i = begin; i < end; ++i) {
    const bool isInverse = color && glyphs[i].isNumber;
    if (isInverse) row += kNumberColor;
    row += glyphs[i].text;
    if (isInverse) row += kPlain;
  }
  if (cutAfter) row += kCut;
}

void Window::appendCarets(std::string& row) const {
  const std::size_t before = (cutBefore ? kCut.size() : 0) + columnsOf(begin, markBegin);
  const std::size_t marked = columnsOf(markBegin, std::min(markEnd, end));
  row.append(before, ' ').append("^").append(marked > 1 ? marked - 1 : 0, '~');
}

}  // namespace

std::string excerptOf(const MarkedLine& line, const Style& style) {
  const std::string number = std::to_string(line.number);
  const std::size_t margin = std::max(number.size(), kNumberColumns) + 1;
  const std::size_t taken = margin + kBar.size();
  const std::size_t left = style.columns > taken ? style.columns - taken : 0;
  const Window window(line, std::max(left, kFewestColumns));
  std::string rows(margin - number.size(), ' ');
  rows.append(number).append(kBar);
  window.appendText(rows, style.color);
  rows.append("\n").append(margin, ' ').append(kBar);
  if (style.color) rows += kCaretColor;
  window.appendCarets(rows);
  if (style.color) rows += kPlain;
  return rows += '\n';
}

}  // namespace tessera::terminal
