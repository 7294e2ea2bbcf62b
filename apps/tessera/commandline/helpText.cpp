#include "tessera/commandline/helpText.hpp"

#include <algorithm>
#include <span>
#include <string_view>

#include "tessera/commandline/describe.hpp"
#include "tessera/terminal/wrapWords.hpp"

namespace tessera::commandline {
namespace {

constexpr std::string_view kUsage = "Usage: tessera COMMAND [OPTION]... [ARGUMENT]...";
constexpr std::size_t kTermIndent = 2;
// Where the descriptions of terms begin.
constexpr std::size_t kDescriptionIndent = 24;
// Narrower rows would have a word each; a terminal that narrow shows broken rows either way.
constexpr std::size_t kMinColumns = 40;

/// Writes paragraphs and lists of terms.
class Sheet {
 public:
  explicit Sheet(std::size_t columns) : columns(std::max(columns, kMinColumns)) {}

  void addParagraph(std::string_view words) {
    if (words.empty()) return;
    if (!text.empty()) text += '\n';
    text.append(terminal::wrapWords(words, 0, columns, 0)).append("\n");
  }

  void addTitle(std::string_view title) { text.append("\n").append(title).append(":\n"); }

  void addTerm(std::string_view term, std::string_view description) {
    text.append(kTermIndent, ' ').append(term);
    std::size_t column = kTermIndent + term.size();
    if (column + 2 > kDescriptionIndent) {
      text += '\n';
      column = 0;
    }
    text.append(kDescriptionIndent - column, ' ');
    text.append(terminal::wrapWords(description, kDescriptionIndent, columns, kDescriptionIndent));
    text += '\n';
  }

  void addExamples(std::string_view title, std::span<const Example> examples) {
    addTitle(title);
    for (const Example& example : examples) {
      text.append(kTermIndent, ' ').append(example.line).append("\n      ");
      text.append(terminal::wrapWords(example.help, 6, columns, 6)).append("\n");
    }
  }

  std::string take() { return std::move(text); }

 private:
  std::size_t columns;
  std::string text;
};

void addCommands(Sheet& sheet, const Program& program) {
  sheet.addTitle("Commands");
  for (const Command& command : program.commands) sheet.addTerm(command.name, command.summary);
}

}  // namespace

std::string helpText(const Command& command, std::size_t columns) {
  Sheet sheet(columns);
  sheet.addParagraph("Usage: " + usageOf(command));
  sheet.addParagraph(command.summary);
  sheet.addParagraph(command.description);
  if (!command.operands.empty()) sheet.addTitle("Arguments");
  for (const Operand& operand : command.operands) sheet.addTerm(operand.name, operand.help);
  for (const Group& group : command.groups) {
    sheet.addTitle(group.title);
    for (const Option& option : group.options) sheet.addTerm(formsOf(option), describe(option));
  }
  sheet.addExamples("Examples", command.examples);
  return sheet.take();
}

std::string helpText(const Program& program, std::size_t columns) {
  Sheet sheet(columns);
  sheet.addParagraph(kUsage);
  sheet.addParagraph(program.summary);
  addCommands(sheet, program);
  sheet.addTitle("Options");
  for (const Option& option : program.options) sheet.addTerm(formsOf(option), describe(option));
  sheet.addExamples("Examples", program.examples);
  sheet.addTitle("Exit status");
  for (const Meaning& status : program.statuses) sheet.addTerm(status.name, status.help);
  sheet.addParagraph(
      "\"tessera help COMMAND\" shows the options of a command. The manual page is tessera(1).");
  return sheet.take();
}

std::string introduction(const Program& program, std::size_t columns) {
  Sheet sheet(columns);
  sheet.addParagraph(kUsage);
  sheet.addParagraph(program.summary);
  addCommands(sheet, program);
  sheet.addExamples("Examples, with files of the folder examples", program.examples);
  sheet.addParagraph(
      "\"tessera help COMMAND\" shows the options of a command, \"man tessera\" all of them.");
  return sheet.take();
}

}  // namespace tessera::commandline
