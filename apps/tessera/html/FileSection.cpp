#include "tessera/html/FileSection.hpp"

#include <string>
#include <string_view>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/formats/NodeKind.hpp"
#include "tessera/html/DiagnosticHtml.hpp"
#include "tessera/html/HtmlText.hpp"
#include "tessera/html/LineGroups.hpp"
#include "tessera/html/LineHtml.hpp"
#include "tessera/html/Outline.hpp"
#include "tessera/html/TaskCard.hpp"
#include "tessera/html/nameOfFile.hpp"
#include "tessera/session/NodeCursor.hpp"
#include "tessera/session/plainLine.hpp"

namespace tessera::html {

using check::catalogue::Diagnostic;
using document::kdzero::Node;

namespace {

// How many rows a diagnostic takes about.
constexpr std::size_t kRowsOfDiagnostic = 6;
// The kind of a line's type while a task is open.
constexpr std::uint64_t kInTask = 3;

std::size_t digitsOf(std::uint64_t number) {
  return std::to_string(number).size();
}

/// Writes the lines of one file.
class SectionLines {
 public:
  SectionLines(files::OutputText& output, const PageFile& file, Unpaired unpaired)
      : file(file), unpaired(unpaired), groups(output) {}

  void writeCode();
  void writeAppendix();

 private:
  using Line = session::LineTable::Line;

  void writeLine(const Line& line, session::NodeCursor& nodes);
  void addNodes(const Line& line, session::NodeCursor& nodes);
  void beginCard(const Node& header, std::uint64_t line);
  void beginItem(std::uint64_t number);
  std::size_t addDiagnostics(std::uint64_t number);

  const PageFile& file;
  Unpaired unpaired;
  LineGroups groups;
  LineHtml content;
  // The item of the list that is being written.
  std::string item;
  // The index of the next diagnostic.
  std::size_t nextDiagnostic = 0;
  bool isInCard = false;
};

void SectionLines::writeCode() {
  session::NodeCursor nodes(file.parsed);
  session::LineTable::Cursor cursor(file.parsed.lines);
  const std::uint64_t total = file.checked.lines.count();
  std::uint64_t number = 0;
  while (cursor.advance()) {
    number = cursor.line().number;
    writeLine(cursor.line(), nodes);
    if (number % progress::kStepsPerShow == 0) file.stage.show(number, total);
  }
  if (isInCard) groups.endCard("</details>\n");
  if (file.appendixLine == 0 && nextDiagnostic < file.checked.diagnostics.size()) {
    // What is wrong at the end of the file.
    beginItem(number + 1);
    const std::size_t rows = addDiagnostics(number + 1);
    groups.addLine(number + 1, item, rows);
  }
  groups.finish();
}

void SectionLines::writeLine(const Line& line, session::NodeCursor& nodes) {
  content.begin(file.number, line.number);
  addNodes(line, nodes);
  content.addLog(line.outcome.log);
  beginItem(line.number);
  content.write(item);
  const std::size_t rows = content.rows() + addDiagnostics(line.number);
  groups.addLine(line.number, item, rows);
  if (!isInCard || line.outcome.result.type.kind == kInTask) return;
  groups.endCard("</details>\n");
  isInCard = false;
}

void SectionLines::addNodes(const Line& line, session::NodeCursor& nodes) {
  for (std::uint64_t i = 0; i < line.outcome.nodeCount; ++i) {
    const Node& node = nodes.at(line.firstNode + i);
    if (formats::kindOf(node) == formats::NodeKind::kTaskLine) {
      beginCard(node, line.number);
      content.addData(node);
    } else {
      content.add(node);
    }
  }
}

void SectionLines::beginCard(const Node& header, std::uint64_t line) {
  if (isInCard) groups.endCard("</details>\n");
  std::string html;
  HtmlText text(html);
  beginTaskCard(text, header, file.number, line);
  groups.beginCard(html, linesOfTask(header));
  isInCard = true;
}

/// Begins the item of a line. Its end tag is left out, and the line break is in its tag: a page
/// with line breaks between items has half as many nodes again, and takes a third longer to load.
void SectionLines::beginItem(std::uint64_t number) {
  item.clear();
  const auto& diagnostics = file.checked.diagnostics;
  HtmlText html(item);
  if (nextDiagnostic < diagnostics.size() &&
      diagnostics[nextDiagnostic].span.begin.line <= number) {
    html.add("<li\nclass=y id=f", file.number, "-", number, ">");
  } else {
    html.add("<li\nid=f", file.number, "-", number, ">");
  }
}

/// Adds the diagnostics of the line `number` and of lines before it. Returns how many rows they
/// take.
std::size_t SectionLines::addDiagnostics(std::uint64_t number) {
  const auto& diagnostics = file.checked.diagnostics;
  std::size_t rows = 0;
  HtmlText html(item);
  for (; nextDiagnostic < diagnostics.size(); ++nextDiagnostic) {
    const Diagnostic& diagnostic = diagnostics[nextDiagnostic];
    if (diagnostic.span.begin.line > number) break;
    rows += kRowsOfDiagnostic;
    if (diagnostic.unpairedTask && unpaired == Unpaired::kDeferred) {
      item += kDeferredMark;
    } else {
      addDiagnostic(html, {file.number, file.checked, nextDiagnostic});
    }
  }
  return rows;
}

void SectionLines::writeAppendix() {
  const source::SourceLines& lines = file.checked.lines;
  if (file.appendixLine == 0) return;
  std::string head;
  HtmlText html(head);
  html.add("<details class=p");
  if (nextDiagnostic < file.checked.diagnostics.size()) html.add(" open");
  html.add("><summary><h3>Appendix</h3> <span class=q>from line ", file.appendixLine,
           "</span></summary>\n");
  groups.beginCard(head, lines.count() + 1 - file.appendixLine);
  for (std::uint64_t number = file.appendixLine; number <= lines.count(); ++number) {
    beginItem(number);
    HtmlText(item).add(lines.line(number));
    // The place after the last line is shown at it.
    const std::size_t rows = 1 + addDiagnostics(number == lines.count() ? number + 1 : number);
    groups.addLine(number, item, rows);
  }
  groups.endCard("</details>\n");
  groups.finish();
}

void addCount(HtmlText& html, std::uint64_t count, std::string_view one, std::string_view many) {
  if (count != 0) html.add("<li>", count, " ", count == 1 ? one : many, "</li>");
}

void writeHead(HtmlText& html, const PageFile& file, const SectionCounts& counts) {
  std::uint64_t failures = 0;
  for (const Diagnostic& diagnostic : file.checked.diagnostics) {
    failures += severityOf(diagnostic) == check::catalogue::Severity::kFailure ? 1 : 0;
  }
  html.add("<header><h2 id=f", file.number, "h>", nameOfFile(file.checked.path),
           "</h2>\n<ul class=facts>");
  html.add("<li>", counts.lines, " ");
  html.add(counts.lines == 1 ? std::string_view("line") : std::string_view("lines"), "</li>");
  addCount(html, counts.tasks, "task", "tasks");
  addCount(html, counts.anchors, "anchor", "anchors");
  addCount(html, counts.outputs, "output", "outputs");
  addCount(html, counts.controls, "control", "controls");
  addCount(html, failures, "failure", "failures");
  addCount(html, file.checked.diagnostics.size() - failures, "warning", "warnings");
  html.add("</ul></header>\n");
}

}  // namespace

void writeSection(files::OutputText& output, const PageFile& file, const SectionCounts& counts,
                  Unpaired unpaired) {
  HtmlText html(output.text());
  if (counts.anchors + counts.tasks != 0) {
    html.add("<section class=\"file o\" id=f");
  } else {
    html.add("<section class=file id=f");
  }
  html.add(file.number, " aria-labelledby=f", file.number, "h>\n");
  writeHead(html, file, counts);
  writeOutline(output, file, counts);
  html.add("<div class=\"text d", digitsOf(counts.lines), "\">\n");
  if (counts.lines == 0) html.add("<p class=q>This file is empty.</p>\n");
  SectionLines lines(output, file, unpaired);
  lines.writeCode();
  lines.writeAppendix();
  html.add("</div></section>\n");
  output.flushIfLarge();
}

}  // namespace tessera::html
