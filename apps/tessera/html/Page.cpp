#include "tessera/html/Page.hpp"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/html/DiagnosticHtml.hpp"
#include "tessera/html/HtmlText.hpp"
#include "tessera/html/liveScript.hpp"
#include "tessera/html/nameOfFile.hpp"
#include "tessera/html/styleSheet.hpp"

namespace tessera::html {

using check::catalogue::catalogue;
using check::catalogue::CatalogueEntry;
using check::catalogue::CheckedFile;
using check::catalogue::Diagnostic;
using check::catalogue::Severity;

namespace {

// A longer list of diagnostics is closed at first.
constexpr std::uint64_t kMostOpenDiagnostics = 30;
// With more lines, a browser lays out what comes into view only. That costs readers something: a
// screen reader knows nothing about groups that were not laid out yet.
constexpr std::uint64_t kMostLaidOutLines = 5000;

/// Returns what the page is about: the file, if there is only one.
std::string titleOf(const PageSummary& summary) {
  if (summary.entries.size() == 1) return std::string(nameOfFile(summary.entries.front().path));
  return std::to_string(summary.entries.size()) + " files";
}

std::uint64_t countOf(const PageSummary& summary, Severity severity) {
  std::uint64_t count = 0;
  for (std::size_t i = 0; i < summary.diagnosticsByKind.size(); ++i) {
    if (catalogue()[i].severity == severity) count += summary.diagnosticsByKind[i];
  }
  return count;
}

/// Allows the script of a live page, and that it asks the server for the next version.
void writeLivePolicy(HtmlText& html, PageUse use) {
  if (use == PageUse::kFile) return;
  html.add("; script-src ", Markup{liveScriptSource()}, "; connect-src 'self'");
}

void writeLiveScript(HtmlText& html, PageUse use) {
  if (use == PageUse::kFile) return;
  html.add("<script type=module>", Markup{liveScript()}, "</script>\n");
}

void writeHtmlHead(HtmlText& html, const std::string& title, PageUse use) {
  html.add(
      "<!DOCTYPE html>\n<html lang=en>\n<head>\n<meta charset=utf-8>\n"
      "<meta http-equiv=Content-Security-Policy content=\"default-src 'none'; style-src ",
      Markup{styleSource()});
  writeLivePolicy(html, use);
  html.add(
      "; base-uri 'none'; form-action 'none'\">\n"
      "<meta name=viewport content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=color-scheme content=\"light dark\">\n<meta name=referrer content=no-referrer>\n"
      "<title>");
  html.addPlain(title);
  html.add(" - tessera</title>\n<style>", Markup{styleSheet()}, "</style>\n");
  writeLiveScript(html, use);
  html.add("</head>\n");
}

void writeNumber(HtmlText& html, std::string_view name, std::uint64_t count) {
  html.add("<div><dt>", name, "</dt><dd>", count, "</dd></div>\n");
}

std::size_t countProblems(const PageSummary& summary) {
  return static_cast<std::size_t>(std::ranges::count_if(
      summary.entries, [](const PageEntry& entry) { return entry.problem.has_value(); }));
}

void writeNumbers(HtmlText& html, const PageSummary& summary) {
  html.add("<dl class=stats>\n");
  if (summary.entries.size() != 1) writeNumber(html, "files", summary.entries.size());
  writeNumber(html, "lines", summary.counts.lines);
  writeNumber(html, "tasks", summary.counts.tasks);
  writeNumber(html, "outputs", summary.counts.outputs);
  writeNumber(html, "controls", summary.counts.controls);
  writeNumber(html, "anchors", summary.counts.anchors);
  writeNumber(html, "failures", countOf(summary, Severity::kFailure));
  writeNumber(html, "warnings", countOf(summary, Severity::kWarning));
  if (const auto problems = countProblems(summary)) writeNumber(html, "not parsed", problems);
  html.add("</dl>\n");
}

/// Returns the kinds that occur, the most frequent first.
std::vector<std::size_t> kindsOf(const PageSummary& summary) {
  std::vector<std::size_t> kinds;
  for (std::size_t i = 0; i < summary.diagnosticsByKind.size(); ++i) {
    if (summary.diagnosticsByKind[i] != 0) kinds.push_back(i);
  }
  std::ranges::stable_sort(kinds, std::ranges::greater(),
                           [&](std::size_t kind) { return summary.diagnosticsByKind[kind]; });
  return kinds;
}

/// The numbers of a bar: how long it is, how long the longest one is, and what all add up to.
struct BarNumbers {
  std::uint64_t count;
  std::uint64_t most;
  std::uint64_t total;
};

void writeBar(HtmlText& html, Severity severity, const BarNumbers& bar) {
  constexpr std::uint64_t kWidth = 1000;
  html.add("<svg viewBox=\"0 0 1000 10\" preserveAspectRatio=none role=img aria-label=\"",
           bar.count, " of ", bar.total,
           "\"><rect class=track width=1000 height=10 rx=5></rect><rect class=");
  if (severity == Severity::kFailure) {
    html.add("f");
  } else {
    html.add("g");
  }
  html.add(" height=10 rx=5 width=", std::max<std::uint64_t>(bar.count * kWidth / bar.most, 8),
           "></rect></svg>");
}

/// Writes the chart: a bar for each kind of diagnostic.
void writeChart(HtmlText& html, const PageSummary& summary) {
  const std::vector<std::size_t> kinds = kindsOf(summary);
  if (kinds.empty()) return;
  const std::uint64_t most = summary.diagnosticsByKind[kinds.front()];
  html.add("<table class=chart><caption>Failures and warnings by kind</caption>\n<tbody>\n");
  for (const std::size_t kind : kinds) {
    const CatalogueEntry& entry = catalogue()[kind];
    html.add("<tr><th scope=row><a href=#x-", Markup{entry.id}, ">", entry.title,
             "</a></th><td class=n>", summary.diagnosticsByKind[kind], "</td><td>");
    writeBar(html, entry.severity,
             {summary.diagnosticsByKind[kind], most, summary.countDiagnostics()});
    html.add("</td></tr>\n");
  }
  html.add("</tbody></table>\n");
}

void writeProblem(HtmlText& html, const PageEntry& entry) {
  const diagnostics::Problem& problem = *entry.problem;
  html.add("<li id=f", entry.number, "><b class=f>error</b> <code>", nameOfFile(problem.file));
  if (problem.place) html.add(":", problem.place->line, ":", problem.place->column);
  html.add("</code> ", problem.what);
  if (!problem.remedy.empty()) html.add("; ", problem.remedy);
  html.add("</li>\n");
}

void writeProblems(files::OutputText& output, const PageSummary& summary) {
  if (countProblems(summary) == 0) return;
  HtmlText html(output.text());
  html.add(
      "<section aria-labelledby=unparsed><h2 id=unparsed>Not parsed</h2>\n"
      "<ul class=\"card list\">\n");
  for (const PageEntry& entry : summary.entries) {
    if (entry.problem) writeProblem(html, entry);
    output.flushIfLarge();
  }
  html.add("</ul></section>\n");
}

/// Says that nothing was found, unless nothing was looked at.
void writeNothingFound(HtmlText& html, const PageSummary& summary) {
  const std::size_t problems = countProblems(summary);
  if (problems == summary.entries.size()) {
    html.add("<p class=card>No file was parsed.</p>\n");
  } else if (problems != 0) {
    html.add(
        "<p class=card>Nothing is wrong with the markers of the files that were parsed.</p>\n");
  } else {
    html.add("<p class=card>Nothing is wrong with the markers.</p>\n");
  }
}

}  // namespace

void PageSummary::add(const SectionCounts& file) {
  counts.lines += file.lines;
  counts.tasks += file.tasks;
  counts.anchors += file.anchors;
  counts.outputs += file.outputs;
  counts.controls += file.controls;
}

void PageSummary::add(const CheckedFile& file) {
  diagnosticsByKind.resize(catalogue().size());
  for (const Diagnostic& diagnostic : file.diagnostics) {
    ++diagnosticsByKind[static_cast<std::size_t>(diagnostic.kind)];
  }
}

std::uint64_t PageSummary::countDiagnostics() const noexcept {
  return std::accumulate(diagnosticsByKind.begin(), diagnosticsByKind.end(), std::uint64_t{0});
}

void beginPage(files::OutputText& output, const PageSummary& summary, PageUse use) {
  const std::string title = titleOf(summary);
  HtmlText html(output.text());
  writeHtmlHead(html, title, use);
  const bool hasTree = summary.entries.size() > 1;
  html.add("<body class=\"");
  if (hasTree) html.add("many ");
  if (summary.counts.lines > kMostLaidOutLines) html.add("large");
  html.add("\">\n");
  html.add("<a class=skip href=#main>Skip to the content</a>\n<header><p>tessera</p><h1>", title,
           "</h1></header>\n");
  if (hasTree) {
    html.add("<nav class=tree aria-labelledby=tree><h2 id=tree>Files</h2>\n");
    writeFileTree(output, summary.entries);
    html.add("</nav>\n");
  }
  html.add(
      "<main id=main tabindex=-1>\n<section aria-labelledby=summary><h2 id=summary>Summary"
      "</h2>\n<div class=card>\n");
  writeNumbers(html, summary);
  writeChart(html, summary);
  html.add("</div></section>\n");
  writeProblems(output, summary);
  output.flushIfLarge();
}

void beginDiagnosticList(files::OutputText& output, const PageSummary& summary) {
  HtmlText html(output.text());
  const std::uint64_t count = summary.countDiagnostics();
  html.add("<section aria-labelledby=found><h2 id=found>Failures and warnings</h2>\n");
  if (count == 0) {
    writeNothingFound(html, summary);
  } else if (count <= kMostOpenDiagnostics) {
    html.add("<ol class=\"card list\">\n");
  } else {
    html.add("<details class=card><summary>All ", count, "</summary>\n<ol class=list>\n");
  }
}

void endDiagnosticList(files::OutputText& output, const PageSummary& summary) {
  HtmlText html(output.text());
  const std::uint64_t count = summary.countDiagnostics();
  if (count > kMostOpenDiagnostics) {
    html.add("</ol></details>\n");
  } else if (count != 0) {
    html.add("</ol>\n");
  }
  html.add("</section>\n");
}

void endPage(files::OutputText& output, const PageSummary& summary) {
  HtmlText html(output.text());
  if (summary.countDiagnostics() != 0) {
    html.add(
        "<section aria-labelledby=why><h2 id=why>What the failures and warnings mean</h2>\n"
        "<div class=\"card why\">\n");
    for (std::size_t i = 0; i < summary.diagnosticsByKind.size(); ++i) {
      if (summary.diagnosticsByKind[i] != 0) addExplanation(html, catalogue()[i]);
    }
    html.add("</div></section>\n");
  }
  html.add("</main>\n<footer>Written by tessera ", std::string_view(TESSERA_VERSION),
           "</footer>\n</body>\n</html>\n");
  output.flushIfLarge();
}

}  // namespace tessera::html
