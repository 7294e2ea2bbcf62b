#include "tessera/terminal/RowFolder.hpp"

#include <algorithm>
#include <iterator>

namespace tessera::terminal {
namespace {

constexpr std::size_t kWidestCharacter = 2;

}  // namespace

RowFolder::RowFolder(const Limits& limits, RowSink& sink)
    : limit(std::max(limits.first, kWidestCharacter)),
      nextLimit(std::max(limits.others, kWidestCharacter)),
      sink(sink) {}

void RowFolder::fold(std::u16string_view text, std::span<const MarkedPart> parts) {
  GlyphCursor cursor(text);
  std::size_t next = 0;
  while (cursor.advance()) {
    const Glyph& glyph = cursor.glyph();
    while (next < parts.size() && parts[next].end <= glyph.begin) ++next;
    const bool isMarked = next < parts.size() && parts[next].begin <= glyph.begin;
    part = isMarked ? next : RowSpan::kNoPart;
    add(text, glyph);
    if (isMarked && glyph.end >= parts[next].end) spans.back().endsPart = true;
  }
  passRow();
}

void RowFolder::add(std::u16string_view text, const Glyph& glyph) {
  if (glyph.columns > std::min(limit, nextLimit)) return addWideGlyph(text, glyph);
  append(glyph.text, glyph.columns, glyph.isNumber);
  if (glyph.text == " " || glyph.text == ",") lastBreak = {rowText.size(), column};
}

/// A glyph that is wider than a row is broken between its characters.
void RowFolder::addWideGlyph(std::u16string_view text, const Glyph& glyph) {
  // Numbers and the blanks of a tab are ASCII.
  if (glyph.text.size() == glyph.columns) {
    for (std::size_t i = 0; i < glyph.text.size(); ++i) {
      append(std::string_view(glyph.text).substr(i, 1), 1, glyph.isNumber);
    }
    return;
  }
  for (std::size_t at = glyph.begin; at < glyph.end;) {
    const bool isPair = (text[at] & 0xFC00) == 0xD800;
    GlyphCursor character(text.substr(at, isPair ? 2 : 1));
    character.advance();
    append(character.glyph().text, character.glyph().columns, false);
    at += character.glyph().end;
  }
}

void RowFolder::append(std::string_view glyphs, std::size_t columns, bool isNumber) {
  while (column + columns > limit) breakRow();
  if (spans.empty() || spans.back().part != part || spans.back().isNumber != isNumber) {
    spans.push_back({part, isNumber, false, rowText.size(), rowText.size(), column, column});
  }
  rowText += glyphs;
  column += columns;
  spans.back().endByte = rowText.size();
  spans.back().endColumn = column;
}

/// Ends the row; what is after its last blank or comma moves to the next one.
void RowFolder::breakRow() {
  const bool isUsable = lastBreak.column > limit / 2 && column - lastBreak.column <= nextLimit / 2;
  const Break end = isUsable ? lastBreak : Break{rowText.size(), column};
  const auto isAfter = [&end](const RowSpan& span) { return span.endByte > end.byte; };
  const auto moved = std::ranges::find_if(spans, isAfter);
  std::vector<RowSpan> rest(moved, spans.end());
  spans.erase(moved, spans.end());
  for (RowSpan& span : rest) {
    if (span.beginByte < end.byte) {
      spans.push_back(span);
      spans.back().endByte = end.byte;
      spans.back().endColumn = end.column;
      spans.back().endsPart = false;
      span.beginByte = end.byte;
      span.beginColumn = end.column;
    }
    span.beginByte -= end.byte;
    span.endByte -= end.byte;
    span.beginColumn -= end.column;
    span.endColumn -= end.column;
  }
  sink.takeRow({std::string_view(rowText).substr(0, end.byte), spans, end.column});
  rowText.erase(0, end.byte);
  spans = std::move(rest);
  column -= end.column;
  lastBreak = {};
  limit = nextLimit;
}

void RowFolder::passRow() {
  sink.takeRow({rowText, spans, column});
}

}  // namespace tessera::terminal
