#include <span>
#include <string>
#include <string_view>

#include "tessera/commandline/generate/texts.hpp"

namespace tessera::commandline::generate {
namespace {

constexpr std::string_view kHead = R"(#compdef tessera

# Completion of tessera for zsh.

)";

constexpr std::string_view kTail = R"(
_tessera() {
  local curcontext="$curcontext" state line
  local -A opt_args
)";

/// Returns `text` with a backslash before each of `characters` and each backslash, for a text in
/// single quotes.
std::string escaped(std::string_view text, std::string_view characters) {
  std::string result;
  for (const char c : text) {
    if (c == '\'') {
      result += "'\\''";
      continue;
    }
    if (c == '\\' || characters.find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

/// Returns the elements of an array that _describe shows.
std::string elements(std::span<const Choice> choices) {
  std::string text;
  for (const Choice& choice : choices) {
    text += "    '" + escaped(choice.name, ":") + ":" + escaped(choice.help, "") + "'\n";
  }
  return text;
}

std::string function(std::string_view name, std::string_view label, const std::string& rows) {
  return "_tessera_" + std::string(name) + "() {\n  local -a values=(\n" + rows +
         "  )\n  _describe '" + std::string(label) + "' values\n}\n\n";
}

std::string commandsFunction(const Program& program) {
  std::string rows;
  for (const Command& command : program.commands) {
    rows += "    '" + std::string(command.name) + ":" + escaped(command.summary, "") + "'\n";
  }
  return function("commands", "command", rows);
}

/// Returns the action that completes a value or an operand.
std::string actionOf(Completion completion) {
  switch (completion) {
    case Completion::kNothing:
      return " ";
    case Completion::kFiles:
      return "_files";
    case Completion::kDirectories:
      return "_directories";
    case Completion::kDiagnostics:
      return "_tessera_diagnostics";
    case Completion::kCommands:
      return "_tessera_commands";
  }
  return " ";
}

std::string actionOf(const Option& option) {
  if (option.choices.empty()) return actionOf(option.completion);
  std::string action = "((";
  for (const Choice& choice : option.choices) {
    if (action.size() > 2) action += ' ';
    action += std::string(choice.name) + "\\:\"" + escaped(choice.help, ":\"") + "\"";
  }
  return action + "))";
}

/// Returns what _arguments takes for an option.
std::string specOf(const Option& option) {
  std::string spec = option.isRepeatable ? "'*'" : "";
  const std::string form = std::string(option.name) + (option.value.empty() ? "" : "=");
  if (option.letter != '\0') {
    const std::string letter = std::string("-") + option.letter;
    if (!option.isRepeatable) spec = "'(" + letter + " " + std::string(option.name) + ")'";
    spec += "{" + letter + (option.value.empty() ? "" : "+") + "," + form + "}";
  } else {
    spec += form;
  }
  spec += "'[" + escaped(option.help, "[]:") + "]";
  if (!option.value.empty()) spec += ":" + std::string(option.value) + ":" + actionOf(option);
  return spec + "'";
}

std::string argumentsOf(const Command& command) {
  std::string text = "      _arguments -s -S";
  for (const Group& group : command.groups) {
    for (const Option& option : group.options) text += " \\\n        " + specOf(option);
  }
  std::size_t place = 0;
  for (const Operand& operand : command.operands) {
    ++place;
    text += " \\\n        '" + (operand.isRepeatable ? "*" : std::to_string(place)) + ":" +
            std::string(operand.name) + ":" + actionOf(operand.completion) + "'";
  }
  return text;
}

}  // namespace

std::string zshCompletion(const Program& program, std::span<const Choice> diagnostics) {
  std::string text(kHead);
  text += commandsFunction(program) + function("diagnostics", "diagnostic", elements(diagnostics));
  text.pop_back();
  text += std::string(kTail) + "  _arguments -C";
  for (const Option& option : program.options) text += " \\\n    " + specOf(option);
  text += " \\\n    '1:command:_tessera_commands' \\\n    '*::argument:->argument' && return\n";
  text += "  [[ $state == argument ]] || return\n";
  text += "  curcontext=\"${curcontext%:*}-$words[1]:\"\n  case $words[1] in\n";
  for (const Command& command : program.commands) {
    text += "    " + std::string(command.name) + ")\n" + argumentsOf(command) + "\n      ;;\n";
  }
  return text + "  esac\n}\n\n_tessera \"$@\"\n";
}

}  // namespace tessera::commandline::generate
