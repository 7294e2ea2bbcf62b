#include "tessera/html/DiagnosticHtml.hpp"

#include <algorithm>

#include "tessera/html/nameOfFile.hpp"

namespace tessera::html {

using check::catalogue::CatalogueEntry;
using check::catalogue::CheckedFile;
using check::catalogue::Diagnostic;
using check::catalogue::entryOf;
using check::catalogue::Note;
using check::catalogue::Position;
using check::catalogue::Severity;
using check::catalogue::Span;

namespace {

// How much of a long line is shown before and after the place, and of the place, in code units.
constexpr std::size_t kContextUnits = 120;
constexpr std::size_t kPlaceUnits = 400;

/// Moves a position in `line` that would cut a surrogate pair to before the pair.
std::size_t wholeCharacter(std::u16string_view line, std::size_t unit) noexcept {
  if (unit == 0 || unit >= line.size()) return std::min(unit, line.size());
  const bool isInPair = (line[unit] & 0xFC00) == 0xDC00 && (line[unit - 1] & 0xFC00) == 0xD800;
  return isInPair ? unit - 1 : unit;
}

/// Appends the line with the place marked; only the surroundings of the place if it is long.
void addExcerpt(HtmlText& html, std::u16string_view line, const Span& span) {
  if (line.empty()) return;
  const std::size_t begin = wholeCharacter(line, span.begin.unit);
  const std::size_t spanEnd = span.end.line == span.begin.line ? span.end.unit : line.size();
  const std::size_t end = wholeCharacter(line, std::clamp(spanEnd, begin, begin + kPlaceUnits));
  const std::size_t from = wholeCharacter(line, begin - std::min(begin, kContextUnits));
  const std::size_t to = wholeCharacter(line, end + kContextUnits);
  html.add("<pre class=e>");
  if (from != 0) html.add("\u2026");
  html.add(line.substr(from, begin - from), "<mark>", line.substr(begin, end - begin), "</mark>",
           line.substr(end, to - end));
  if (to != line.size()) html.add("\u2026");
  html.add("</pre>");
}

std::uint64_t columnOf(const CheckedFile& file, const Position& position) {
  return file.lines.countCharactersBefore(position.line, position.unit) + 1;
}

void addNote(HtmlText& html, const FoundDiagnostic& found, const Note& note) {
  html.add("<p>");
  if (note.otherFile != nullptr) {
    html.add(note.message, " is at ", nameOfFile(note.otherFile->path), ":", note.span.begin.line,
             ":", columnOf(*note.otherFile, note.span.begin), "</p>");
    return;
  }
  html.add("<a href=#f", found.fileNumber, "-", note.span.begin.line, ">Line ",
           note.span.begin.line, "</a>: ", note.message, "</p>");
}

void addSeverity(HtmlText& html, Severity severity) {
  if (severity == Severity::kFailure) {
    html.add("<b class=f>failure</b> ");
  } else {
    html.add("<b class=g>warning</b> ");
  }
}

/// Appends a text of the catalogue, whose paragraphs empty lines separate.
void addParagraphs(HtmlText& html, std::string_view text) {
  constexpr std::string_view kSeparator = "\n\n";
  while (true) {
    const std::size_t length = text.find(kSeparator);
    html.add("<p>", text.substr(0, length), "</p>");
    if (length == text.npos) return;
    text.remove_prefix(length + kSeparator.size());
  }
}

}  // namespace

void addDiagnostic(HtmlText& html, const FoundDiagnostic& found) {
  const Diagnostic& diagnostic = found.diagnostic();
  const CatalogueEntry& entry = entryOf(diagnostic.kind);
  if (entry.severity == Severity::kFailure) {
    html.add("<div class=\"g f\" role=note id=f");
  } else {
    html.add("<div class=g role=note id=f");
  }
  html.add(found.fileNumber, "-d", found.index + 1, "><p>");
  addSeverity(html, entry.severity);
  html.add(diagnostic.message, "</p>");
  addExcerpt(html, found.file.lines.line(diagnostic.span.begin.line), diagnostic.span);
  for (const Note& note : diagnostic.notes) addNote(html, found, note);
  if (diagnostic.fix) html.add("<p>Fix: ", diagnostic.fix->description, "</p>");
  html.add("<p><a href=#x-", Markup{entry.id}, ">Explain <code>", entry.id,
           "</code></a></p></div>");
}

void addListItem(HtmlText& html, const FoundDiagnostic& found) {
  const Diagnostic& diagnostic = found.diagnostic();
  html.add("<li><a href=#f", found.fileNumber, "-d", found.index + 1, ">",
           nameOfFile(found.file.path), ":", diagnostic.span.begin.line, ":",
           columnOf(found.file, diagnostic.span.begin), "</a> ");
  addSeverity(html, severityOf(diagnostic));
  html.add(diagnostic.message, "</li>\n");
}

void addExplanation(HtmlText& html, const CatalogueEntry& entry) {
  html.add("<article id=x-", Markup{entry.id}, "><h3>");
  addSeverity(html, entry.severity);
  html.add(entry.title, "</h3><p><code>", entry.id, "</code></p>");
  addParagraphs(html, entry.explanation);
  html.add("<div class=pair><figure><figcaption>Before</figcaption><pre>", entry.before,
           "</pre></figure><figure><figcaption>After</figcaption><pre>", entry.after,
           "</pre></figure></div>");
  if (!entry.fix.empty()) html.add("<p><code>tessera check --fix</code>: ", entry.fix, "</p>");
  html.add("</article>\n");
}

}  // namespace tessera::html
