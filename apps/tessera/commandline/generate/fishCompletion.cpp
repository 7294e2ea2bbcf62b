#include <span>
#include <string>
#include <string_view>

#include "tessera/commandline/generate/texts.hpp"

namespace tessera::commandline::generate {
namespace {

constexpr std::string_view kHead = R"(# Completion of tessera for fish.

# Succeeds if the command of tessera is the one named; with '': if there is none yet.
function __tessera_is -a name
    set -l words (commandline -opc)
    for word in $words[2..-1]
        if not string match -q -- '-*' $word
            test "$word" = "$name"
            return
        end
    end
    test -z "$name"
end

complete -c tessera -f
)";

std::string inFishQuotes(std::string_view text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') result += '\\';
    result += c;
  }
  return result + "'";
}

std::string lineFor(std::string_view command) {
  return "complete -c tessera -n \"__tessera_is '" + std::string(command) + "'\"";
}

/// Returns the argument of `-a` for names with descriptions. The shell evaluates it once more.
std::string offer(std::span<const Choice> choices) {
  std::string text;
  for (const Choice& choice : choices) {
    if (!text.empty()) text += ' ';
    text += std::string(choice.name) + "\\t" + inFishQuotes(choice.help);
  }
  return inFishQuotes(text);
}

std::string offer(std::span<const Command> commands) {
  std::string names;
  for (const Command& command : commands)
    names.append(names.empty() ? "" : " ").append(command.name);
  return "'" + names + "'";
}

/// Returns the options of `complete` that say what a value or an operand may be.
std::string valuesFor(Completion completion, const Program& program,
                      std::span<const Choice> diagnostics) {
  switch (completion) {
    case Completion::kNothing:
      return " -x";
    case Completion::kFiles:
      return " -r -F";
    case Completion::kDirectories:
      return " -x -a '(__fish_complete_directories)'";
    case Completion::kDiagnostics:
      return " -x -a " + offer(diagnostics);
    case Completion::kCommands:
      return " -x -a " + offer(program.commands);
  }
  return {};
}

std::string lineFor(std::string_view command, const Option& option, const Program& program,
                    std::span<const Choice> diagnostics) {
  std::string line = lineFor(command);
  if (option.letter != '\0') line.append(" -s ").append(1, option.letter);
  line.append(" -l ").append(option.name.substr(2));
  line += " -d " + inFishQuotes(option.help);
  if (option.value.empty()) return line + "\n";
  line += option.choices.empty() ? valuesFor(option.completion, program, diagnostics)
                                 : " -x -a " + offer(option.choices);
  return line + "\n";
}

std::string linesFor(const Command& command, const Program& program,
                     std::span<const Choice> diagnostics) {
  std::string lines = "\n";
  for (const Group& group : command.groups) {
    for (const Option& option : group.options) {
      lines += lineFor(command.name, option, program, diagnostics);
    }
  }
  if (command.operands.empty()) return lines;
  // Of several operands, what the last one may be is offered for all.
  const Completion completion = command.operands.back().completion;
  const bool isFile = completion == Completion::kFiles;
  return lines + lineFor(command.name) +
         (isFile ? " -F" : valuesFor(completion, program, diagnostics)) + "\n";
}

}  // namespace

std::string fishCompletion(const Program& program, std::span<const Choice> diagnostics) {
  std::string text(kHead);
  for (const Option& option : program.options) text += lineFor("", option, program, diagnostics);
  for (const Command& command : program.commands) {
    text += lineFor("") + " -a " + std::string(command.name) + " -d " +
            inFishQuotes(command.summary) + "\n";
  }
  for (const Command& command : program.commands) text += linesFor(command, program, diagnostics);
  return text;
}

}  // namespace tessera::commandline::generate
