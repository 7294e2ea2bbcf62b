#include "tessera/tree/LineRows.hpp"

#include <algorithm>
#include <map>

#include "tessera/check/scan/markerText.hpp"
#include "tessera/terminal/wrapWords.hpp"

namespace tessera::tree {

using terminal::Row;
using terminal::RowFolder;
using terminal::RowSpan;

namespace {

// Marks in a row that is longer would make the text grow with the square of the line.
constexpr std::size_t kFarthestMark = 400;

}  // namespace

void LabeledLine::clear() {
  text.clear();
  marked.clear();
  labelNumbers.clear();
  all.clear();
}

void LabeledLine::addMarked(std::u16string_view more, std::size_t label) {
  marked.push_back({text.size(), text.size() + more.size()});
  labelNumbers.push_back(label);
  text += more;
}

std::size_t LabeledLine::addLabel(Label label) {
  all.push_back(std::move(label));
  return all.size() - 1;
}

LineRows::LineRows(TreeRows& rows, const LabeledLine& line)
    : rows(rows), line(line), lastParts(line.labels().size()), isWritten(line.labels().size()) {
  for (std::size_t part = 0; part < line.parts().size(); ++part) {
    lastParts[line.labelOf(part)] = part;
  }
}

void LineRows::append() {
  RowFolder::Limits limits;
  limits.first = rows.columns();
  limits.others = limits.first == RowFolder::kUnlimited
                      ? limits.first
                      : limits.first - std::min(limits.first, TreeRows::kHangingIndent);
  RowFolder(limits, *this).fold(line.content(), line.parts());
  // Text that is empty, or combined with the character before it, is in no row.
  for (std::size_t label = 0; label < isWritten.size(); ++label) {
    if (isWritten[label]) continue;
    rows.appendNote(0, {line.labels()[label].text, line.labels()[label].color});
    appendDetails(label);
  }
}

void LineRows::takeRow(const Row& row) {
  rows.beginRow(indent == 0 ? TreeRows::Start::kFirst : TreeRows::Start::kContinued,
                !row.text.empty());
  rows.target().append(indent, ' ');
  appendText(row);
  rows.endRow();
  for (const Mark& mark : marksOf(row)) appendMark(mark);
  indent = TreeRows::kHangingIndent;
}

std::string_view LineRows::colorOf(const RowSpan& span) const {
  return line.labels()[line.labelOf(span.part)].color;
}

void LineRows::appendText(const Row& row) {
  std::string& text = rows.target();
  if (!rows.rowStyle().color) {
    text += row.text;
    return;
  }
  for (const RowSpan& span : row.spans) {
    const bool isMarked = span.part != RowSpan::kNoPart;
    if (isMarked) text.append("\x1b[4;").append(colorOf(span)).append("m");
    if (span.isNumber) text += "\x1b[7m";
    text += row.text.substr(span.beginByte, span.endByte - span.beginByte);
    if (isMarked || span.isNumber) text += "\x1b[0m";
  }
}

std::vector<LineRows::Mark> LineRows::marksOf(const Row& row) const {
  std::vector<Mark> marks;
  std::map<std::size_t, std::size_t> markOfLabel;
  for (const RowSpan& span : row.spans) {
    if (span.part == RowSpan::kNoPart) continue;
    const std::size_t label = line.labelOf(span.part);
    const auto [known, isNew] = markOfLabel.emplace(label, marks.size());
    if (isNew) marks.push_back({.label = label, .columns = {}});
    Mark& mark = marks[known->second];
    if (!mark.columns.empty() && mark.columns.back().second == span.beginColumn) {
      mark.columns.back().second = span.endColumn;
    } else {
      mark.columns.emplace_back(span.beginColumn, span.endColumn);
    }
    mark.isLast = span.endsPart && lastParts[label] == span.part;
  }
  return marks;
}

/// Appends the marks of a label and, if its text ends in this row, the label.
void LineRows::appendMark(const Mark& mark) {
  const Label& label = line.labels()[mark.label];
  if (mark.columns.back().second > kFarthestMark) {
    if (mark.isLast) appendQuoted(mark.label);
    return;
  }
  const std::size_t begin = indent + mark.columns.front().first;
  std::string marks = marksText(mark);
  if (mark.isLast) {
    const std::string labelled = marks + label.text;
    // Both in one row, if there is room.
    if (rows.rowStyle().color || terminal::widthOf(labelled) <= rows.columns() - begin) {
      rows.appendNote(begin, {labelled, label.color});
      return appendDetails(mark.label);
    }
  }
  if (marks.empty()) return;
  marks.pop_back();
  rows.appendNote(begin, {std::move(marks), label.color});
  if (!mark.isLast) return;
  rows.appendNote(begin, {label.text, label.color});
  appendDetails(mark.label);
}

/// Returns what is between the text and its label, with a blank at the end.
std::string LineRows::marksText(const Mark& mark) const {
  if (rows.rowStyle().color) {
    if (!mark.isLast) return {};
    return rows.rowStyle().symbols == Symbols::kUnicode ? "╰ " : "` ";
  }
  std::string marks;
  for (const auto& [first, last] : mark.columns) {
    marks.append(first - mark.columns.front().first - marks.size(), ' ').append(last - first, '~');
  }
  return marks += ' ';
}

/// Appends a label with its text instead of marks.
void LineRows::appendQuoted(std::size_t label) {
  const terminal::MarkedPart& part = line.parts()[lastParts[label]];
  const Label& shown = line.labels()[label];
  const auto text = line.content().substr(part.begin, part.end - part.begin);
  rows.appendNote(0, {check::scan::quoted(text) + " " + shown.text, shown.color});
  appendDetails(label);
}

void LineRows::appendDetails(std::size_t label) {
  isWritten[label] = true;
  const Label& shown = line.labels()[label];
  if (shown.appendDetails) shown.appendDetails(TreeRows::kHangingIndent);
}

}  // namespace tessera::tree
