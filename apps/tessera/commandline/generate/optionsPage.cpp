#include <span>
#include <string>
#include <string_view>

#include "tessera/commandline/describe.hpp"
#include "tessera/commandline/generate/texts.hpp"

namespace tessera::commandline::generate {
namespace {

/// Returns `text` for the cell of a table.
std::string cell(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '|' || c == '*' || c == '<' || c == '[') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

/// Returns the choices with what each means, for the cell of a table.
std::string choicesOf(const Option& option) {
  std::string text;
  for (const Choice& choice : option.choices) {
    text += text.empty() ? "<br>" : "; ";
    text += "`" + std::string(choice.name) + "`: " + cell(choice.help);
  }
  return text;
}

std::string optionRows(std::span<const Option> options) {
  std::string rows = "| Option | Meaning |\n| --- | --- |\n";
  for (const Option& option : options) {
    rows += "| `" + formsOf(option) + "` | " + cell(describe(option)) + choicesOf(option) + " |\n";
  }
  return rows;
}

std::string meaningRows(std::string_view title, std::span<const Meaning> meanings) {
  std::string rows = "| " + std::string(title) + " | Meaning |\n| --- | --- |\n";
  for (const Meaning& meaning : meanings) {
    rows += "| `" + std::string(meaning.name) + "` | " + cell(meaning.help) + " |\n";
  }
  return rows;
}

std::string section(const Command& command) {
  std::string text = "\n## tessera " + std::string(command.name) + "\n\n    " + usageOf(command) +
                     "\n\n" + std::string(command.summary) + "\n";
  if (!command.description.empty()) text.append(command.description).append("\n");
  for (const Operand& operand : command.operands) {
    text += "\n`" + std::string(operand.name) + "`: " + std::string(operand.help) + "\n";
  }
  for (const Group& group : command.groups) {
    text += "\n### " + std::string(command.name) + ": " + std::string(group.title) + "\n\n";
    text += optionRows(group.options);
  }
  text += "\nExamples, in the folder `examples`:\n\n";
  for (const Example& example : command.examples) {
    text += "- `" + std::string(example.line) + "`  \n  " + std::string(example.help) + "\n";
  }
  return text;
}

}  // namespace

std::string optionsPage(const Program& program) {
  std::string text =
      "# Commands and options\n\n"
      "This page is generated from the table that the program itself reads "
      "(`apps/tessera/commandline/program.cpp`).\n"
      "`tessera help COMMAND` shows the same in a terminal, `man tessera` all of it.\n\n"
      "    tessera COMMAND [OPTION]... [ARGUMENT]...\n\n";
  text.append(program.description).append("\n\n");
  text += optionRows(program.options);
  for (const Command& command : program.commands) text += section(command);
  text += "\n## Exit status\n\n" + meaningRows("Status", program.statuses);
  text += "\n## Environment\n\n" + meaningRows("Variable", program.environment);
  return text;
}

}  // namespace tessera::commandline::generate
