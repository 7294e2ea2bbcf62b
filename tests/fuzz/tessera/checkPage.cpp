#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "apps/tessera/support/WrittenText.hpp"
#include "fl/i18n/ustring.hpp"
#include "fuzz/Choices.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/tessera/HtmlChecker.hpp"
#include "fuzz/tessera/Workbench.hpp"
#include "tessera/check/checkFile.hpp"
#include "tessera/html/DiagnosticHtml.hpp"
#include "tessera/html/FileSection.hpp"
#include "tessera/html/HtmlText.hpp"
#include "tessera/html/Page.hpp"

namespace quenlith::fuzz {

using tessera::check::catalogue::CheckedFile;
using tessera::html::PageFile;
using tessera::html::PageSummary;

namespace {

void writeList(WrittenText& output, const CheckedFile& checked) {
  tessera::html::HtmlText items(output.text());
  for (std::size_t i = 0; i < checked.diagnostics.size(); ++i) {
    tessera::html::addListItem(items, {1, checked, i});
  }
}

// The page of one file, as `tessera parse --format html` writes it.
std::string writePage(const PageFile& file, tessera::html::PageUse use) {
  const auto counts = tessera::html::countParts(file);
  PageSummary summary;
  summary.entries.push_back({.path = file.checked.path, .number = 1});
  summary.add(counts);
  summary.add(file.checked);
  WrittenText output;
  tessera::html::beginPage(output, summary, use);
  tessera::html::beginDiagnosticList(output, summary);
  writeList(output, file.checked);
  tessera::html::endDiagnosticList(output, summary);
  tessera::html::writeSection(output, file, counts, tessera::html::Unpaired::kWritten);
  tessera::html::endPage(output, summary);
  return output.all() + output.text();
}

bool isExpected(std::string_view element) {
  constexpr std::array<std::string_view, 46> kElements = {
      "html",   "head",    "meta",    "title", "style",    "body",    "a",       "header",
      "p",      "h1",      "h2",      "h3",    "nav",      "main",    "section", "div",
      "dl",     "dt",      "dd",      "table", "caption",  "tbody",   "tr",      "th",
      "td",     "svg",     "rect",    "ol",    "ul",       "li",      "b",       "code",
      "i",      "details", "summary", "pre",   "mark",     "article", "figure",  "figcaption",
      "footer", "span",    "label",   "input", "fieldset", "legend"};
  return std::ranges::find(kElements, element) != kElements.end();
}

}  // namespace

void checkPage(std::string_view input) {
  Choices choices(input);
  const SourceFile file = readFile(choices);
  Workbench& bench = Workbench::get();
  auto parsed = bench.parse(file);
  const tessera::session::ParsedSnippet document{
      .code = {}, .parts = {}, .document = parsed.snippet.document, .lines = parsed.snippet.lines};
  const std::uint64_t appendixLine = parsed.source.appendixLine;
  const CheckedFile checked =
      tessera::check::checkFile(file.name, std::move(parsed), &Workbench::isAccepted);
  const std::string page =
      writePage({.number = 1, .checked = checked, .parsed = document, .appendixLine = appendixLine},
                tessera::html::PageUse::kFile);
  const HtmlContent content = readHtml(page);
  require(content.fault.empty(), "the page is well-formed", [&] { return content.fault; });
  for (const std::string& element : content.elements) {
    require(isExpected(element), "no text becomes an element", [&] { return element; });
  }
}

}  // namespace quenlith::fuzz
