#include "tessera/check/catalogue/describeEntry.hpp"

#include <cstddef>
#include <string_view>

namespace tessera::check::catalogue {
namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kMarkdownColumns = 120;

/// Appends `text` with its lines broken at blanks, so that each has at most `columns` characters
/// where words allow it. Line breaks in `text` are kept.
void appendWrapped(std::string& output, std::string_view text, std::size_t columns) {
  std::size_t column = 0;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find_first_of(" \n"));
    if (column != 0 && column + 1 + word.size() > columns) {
      output += '\n';
      column = 0;
    }
    if (column != 0) output += ' ';
    column += word.size() + (column == 0 ? 0 : 1);
    output += word;
    text.remove_prefix(word.size());
    if (text.starts_with('\n')) {
      output += '\n';
      column = 0;
    }
    if (!text.empty()) text.remove_prefix(1);
  }
  output += '\n';
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

void appendMarkdown(std::string& output, const CatalogueEntry& entry) {
  appendWrapped(output, entry.explanation, kMarkdownColumns);
  if (!entry.before.empty()) {
    output += "\nBefore:\n\n";
    appendFenced(output, entry.before);
    output += "\nAfter:\n\n";
    appendFenced(output, entry.after);
  }
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
  appendWrapped(text, entry.explanation, kColumns);
  if (!entry.before.empty()) {
    text += "\nBefore:\n\n";
    appendIndented(text, entry.before);
    text += "\nAfter:\n\n";
    appendIndented(text, entry.after);
  }
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
