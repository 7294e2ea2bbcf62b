#include "tessera/reports/TextReport.hpp"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/reports/placeOf.hpp"
#include "tessera/terminal/wrapWords.hpp"

namespace tessera::reports {

using namespace check::catalogue;

namespace {

// A reader needs a few places to see what they have in common.
constexpr std::size_t kMostNotes = 5;

constexpr std::string_view kBold = "\x1b[1m";
constexpr std::string_view kPlain = "\x1b[0m";

/// A word that says what a row is, and its colour.
struct Kind {
  std::string_view word;
  std::string_view color;
};

constexpr Kind kFailureKind{"failure", "\x1b[1;31m"};
constexpr Kind kWarningKind{"warning", "\x1b[1;35m"};
constexpr Kind kNoteKind{"note", "\x1b[1;36m"};
constexpr Kind kFixKind{"fix", "\x1b[1;32m"};

void appendStyled(std::string& text, std::string_view styled, std::string_view sequence,
                  const terminal::Style& style) {
  if (style.color) text += sequence;
  text += styled;
  if (style.color) text += kPlain;
}

/// Appends the row "file:line:column: kind: message".
void appendHeading(std::string& text, std::string place, const Kind& kind, std::string_view message,
                   const terminal::Style& style) {
  place += ": ";
  appendStyled(text, place, kBold, style);
  appendStyled(text, kind.word, kind.color, style);
  text += ": ";
  if (style.isTerminal) {
    const std::size_t column = terminal::widthOf(place) + kind.word.size() + 2;
    text += terminal::wrapWords(message, column, style.columns);
  } else {
    text += message;
  }
  text += '\n';
}

/// Returns "1 failure" or "2 failures".
std::string counted(std::size_t count, std::string_view one, std::string_view several) {
  return (std::to_string(count) + ' ').append(count == 1 ? one : several);
}

void appendExcerpt(std::string& text, const CheckedFile& file, const Span& span,
                   const terminal::Style& style) {
  const std::u16string_view line = file.lines.line(span.begin.line);
  const bool isOneLine = span.end.line == span.begin.line;
  text += terminal::excerptOf(
      {span.begin.line, line, span.begin.unit, isOneLine ? span.end.unit : line.size()}, style);
}

}  // namespace

void TextReport::write(const CheckedFile& file) {
  for (const Diagnostic& diagnostic : file.diagnostics) {
    writeDiagnostic(file, diagnostic);
    output.flushIfLarge();
  }
  output.flush();
}

void TextReport::writeDiagnostic(const CheckedFile& file, const Diagnostic& diagnostic) {
  const CatalogueEntry& entry = entryOf(diagnostic.kind);
  std::string& text = output.text();
  const bool isFailure = entry.severity == Severity::kFailure;
  ++(isFailure ? failureCount : warningCount);
  std::string message = diagnostic.message;
  message.append(" [").append(entry.id).append("]");
  appendHeading(text, placeOf(file, diagnostic.span.begin), isFailure ? kFailureKind : kWarningKind,
                message, style);
  appendExcerpt(text, file, diagnostic.span, style);
  writeNotes(file, diagnostic);
  if (!diagnostic.fix) return;
  ++fixCount;
  appendHeading(text, placeOf(file, diagnostic.fix->edits.front().span.begin), kFixKind,
                diagnostic.fix->description, style);
}

void TextReport::writeNotes(const CheckedFile& file, const Diagnostic& diagnostic) {
  std::string& text = output.text();
  const auto& notes = diagnostic.notes;
  for (const Note& note : std::span(notes).first(std::min(notes.size(), kMostNotes))) {
    const CheckedFile& noted = note.otherFile == nullptr ? file : *note.otherFile;
    appendHeading(text, placeOf(noted, note.span.begin), kNoteKind, note.message, style);
    const bool isRepeated = note.otherFile == nullptr && note.span == diagnostic.span;
    if (!isRepeated) appendExcerpt(text, noted, note.span, style);
  }
  if (notes.size() <= kMostNotes) return;
  const std::size_t others = notes.size() - kMostNotes;
  appendHeading(text, placeOf(file, notes[kMostNotes].span.begin), kNoteKind,
                "and " + std::to_string(others) +
                    (others == 1 ? " more place" : " more places; --format json lists all"),
                style);
}

void TextReport::finish() {
  if (style.isTerminal && failureCount + warningCount != 0) writeSummary();
  output.flush();
}

void TextReport::writeSummary() {
  std::string summary;
  if (failureCount != 0) summary = counted(failureCount, "failure", "failures");
  if (failureCount != 0 && warningCount != 0) summary += " and ";
  if (warningCount != 0) summary += counted(warningCount, "warning", "warnings");
  if (fixCount != 0) summary += "; --fix corrects " + std::to_string(fixCount);
  summary += "; \"tessera explain ID\" says more";
  output.text().append("\n").append(terminal::wrapWords(summary, 0, style.columns)).append("\n");
}

}  // namespace tessera::reports
