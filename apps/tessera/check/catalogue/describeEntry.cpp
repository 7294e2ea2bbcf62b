#include "tessera/check/catalogue/describeEntry.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace tessera::check::catalogue {
namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kMarkdownColumns = 120;

/// Appends `text` in lines of at most `columns` characters where words allow it, broken at its
/// blanks and line breaks only.
void appendWrapped(std::string& output, std::string_view text, std::size_t columns) {
  std::size_t column = 0;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find_first_of(" \n"), text.size());
    if (column != 0) {
      const bool fits = column + 1 + length <= columns;
      output += fits ? ' ' : '\n';
      column = fits ? column + 1 : 0;
    }
    output += text.substr(0, length);
    column += length;
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  output += '\n';
}

/// Appends the paragraphs of `text`, which empty lines separate, each wrapped.
void appendParagraphs(std::string& output, std::string_view text, std::size_t columns) {
  constexpr std::string_view kSeparator = "\n\n";
  for (;;) {
    const std::size_t length = text.find(kSeparator);
    appendWrapped(output, text.substr(0, length), columns);
    if (length == text.npos) return;
    output += '\n';
    text.remove_prefix(length + kSeparator.size());
  }
}

void appendIndented(std::string& output, std::string_view lines) {
  while (!lines.empty()) {
    const std::size_t length = lines.find('\n');
    const std::string_view line = lines.substr(0, length);
    if (!line.empty()) output.append("    ").append(line);
    output += '\n';
    lines.remove_prefix(length == lines.npos ? lines.size() : length + 1);
  }
}

void appendFenced(std::string& output, std::string_view lines) {
  output.append("```text\n").append(lines).append("```\n");
}

/// Returns what precedes the source with the problem.
std::string headingOfBefore(const CatalogueEntry& entry) {
  if (entry.exampleOptions.empty()) return "\nBefore:\n\n";
  return "\nBefore (with " + std::string(entry.exampleOptions) + "):\n\n";
}

void appendMarkdown(std::string& output, const CatalogueEntry& entry) {
  appendParagraphs(output, entry.explanation, kMarkdownColumns);
  output += headingOfBefore(entry);
  appendFenced(output, entry.before);
  output += "\nAfter:\n\n";
  appendFenced(output, entry.after);
  if (entry.fix.empty()) return;
  output += '\n';
  appendWrapped(output, "`tessera check --fix`: " + std::string(entry.fix), kMarkdownColumns);
}

}  // namespace

std::string_view nameOf(Severity severity) noexcept {
  return severity == Severity::kFailure ? "failure" : "warning";
}

std::string describeAsText(const CatalogueEntry& entry) {
  std::string text;
  text.append(entry.id).append(" (").append(nameOf(entry.severity)).append(")\n");
  text.append(entry.title).append("\n\n");
  appendParagraphs(text, entry.explanation, kColumns);
  text += headingOfBefore(entry);
  appendIndented(text, entry.before);
  text += "\nAfter:\n\n";
  appendIndented(text, entry.after);
  if (entry.fix.empty()) return text;
  text += '\n';
  appendWrapped(text, "tessera check --fix: " + std::string(entry.fix), kColumns);
  return text;
}

std::string describeAsMarkdown(const CatalogueEntry& entry) {
  std::string text;
  appendMarkdown(text, entry);
  return text;
}

std::string describeCatalogue() {
  std::string text = "| Id | Severity | What is wrong | Fix |\n| --- | --- | --- | --- |\n";
  for (const CatalogueEntry& entry : catalogue()) {
    text.append("| [`").append(entry.id).append("`](#").append(entry.id).append(") | ");
    text.append(nameOf(entry.severity)).append(" | ").append(entry.title);
    text.append(entry.fix.empty() ? " | no |\n" : " | yes |\n");
  }
  for (const CatalogueEntry& entry : catalogue()) {
    text.append("\n### `").append(entry.id).append("`\n\n");
    text.append("A ").append(nameOf(entry.severity)).append(": ").append(entry.title);
    text += ".\n\n";
    appendMarkdown(text, entry);
  }
  return text;
}

}  // namespace tessera::check::catalogue
