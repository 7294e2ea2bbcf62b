#include <span>
#include <string>
#include <string_view>

#include "tessera/commandline/generate/texts.hpp"

namespace tessera::commandline::generate {
namespace {

// `cword` is the word to complete; "=" is a word in bash, so `--format=js` are three. Where the
// function offers nothing and does not say `nothing`, readline completes file names by itself,
// which quotes them properly.
constexpr std::string_view kHead = R"(# Completion of tessera for bash.

_tessera() {
  local command='' option='' current="${COMP_WORDS[COMP_CWORD]}" word
  local -i index ended=0 place=0
  COMPREPLY=()
  for ((index = 1; index < COMP_CWORD; ++index)); do
    word="${COMP_WORDS[index]}"
    if [[ $word == -- ]]; then
      ended=1
    elif [[ -z $command && $word != -* ]]; then
      command="$word"
    elif [[ $word != -* ]]; then
      place+=1
    fi
  done
  index=$((COMP_CWORD - 1))
  if [[ $current == '=' ]]; then
    current=''
  elif [[ ${COMP_WORDS[index]} == '=' ]]; then
    index=$((index - 1))
  fi
  if ((!ended && index > 0)) && [[ ${COMP_WORDS[index]} == -* ]]; then
    option="${COMP_WORDS[index]}"
  fi
)";

constexpr std::string_view kTail = R"(}

_tessera_words() {
  compopt +o default
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current")
}

complete -o default -F _tessera tessera
)";

std::string namesOf(std::span<const Choice> choices) {
  std::string names;
  for (const Choice& choice : choices) names.append(names.empty() ? "" : " ").append(choice.name);
  return names;
}

std::string namesOf(std::span<const Command> commands) {
  std::string names;
  for (const Command& command : commands)
    names.append(names.empty() ? "" : " ").append(command.name);
  return names;
}

/// Returns the commands that offer `words`; readline offers files without any.
std::string offer(const std::string& words) {
  return "_tessera_words '" + words + "'; return";
}

std::string offerFor(Completion completion, const Program& program,
                     std::span<const Choice> diagnostics) {
  switch (completion) {
    case Completion::kNothing:
      return offer("");
    case Completion::kFiles:
      return "return";
    case Completion::kDirectories:
      return "compopt -o dirnames +o default; return";
    case Completion::kDiagnostics:
      return offer(namesOf(diagnostics));
    case Completion::kCommands:
      return offer(namesOf(program.commands));
  }
  return "return";
}

std::string patternOf(std::string_view command, const Option& option) {
  std::string pattern = std::string(command) + ":" + std::string(option.name);
  if (option.letter != '\0') pattern += " | " + std::string(command) + ":-" + option.letter;
  return pattern;
}

void appendFormsTo(std::string& words, const Option& option) {
  if (option.letter != '\0') words.append(words.empty() ? "-" : " -").append(1, option.letter);
  words.append(words.empty() ? "" : " ").append(option.name);
}

std::string formsIn(const Command& command) {
  std::string words;
  for (const Group& group : command.groups) {
    for (const Option& option : group.options) appendFormsTo(words, option);
  }
  return words;
}

/// Returns the cases of the values of options.
std::string valueCases(const Program& program, std::span<const Choice> diagnostics) {
  std::string cases = "  case $command:$option in\n";
  for (const Command& command : program.commands) {
    for (const Group& group : command.groups) {
      for (const Option& option : group.options) {
        if (option.value.empty()) continue;
        cases += "    " + patternOf(command.name, option) + ") ";
        cases += option.choices.empty() ? offerFor(option.completion, program, diagnostics)
                                        : offer(namesOf(option.choices));
        cases += " ;;\n";
      }
    }
  }
  return cases + "  esac\n";
}

std::string optionCases(const Program& program) {
  std::string words;
  for (const Option& option : program.options) appendFormsTo(words, option);
  std::string cases = "  if ((!ended)) && [[ $current == -?* || $current == - ]]; then\n";
  cases += "    case $command in\n      '') " + offer(words) + " ;;\n";
  for (const Command& command : program.commands) {
    cases += "      " + std::string(command.name) + ") " + offer(formsIn(command)) + " ;;\n";
  }
  return cases + "    esac\n  fi\n";
}

/// Returns what is offered for the operands of a command. The place of an operand counts only if
/// there are several: the values of options are counted too.
std::string offerOperands(const Command& command, const Program& program,
                          std::span<const Choice> diagnostics) {
  if (command.operands.empty()) return offer("");
  std::string cases;
  for (std::size_t i = 0; i + 1 < command.operands.size(); ++i) {
    cases += "((place == " + std::to_string(i) + ")) && { " +
             offerFor(command.operands[i].completion, program, diagnostics) + "; }; ";
  }
  return cases + offerFor(command.operands.back().completion, program, diagnostics);
}

std::string operandCases(const Program& program, std::span<const Choice> diagnostics) {
  std::string cases = "  case $command in\n    '') ";
  cases += offer(namesOf(program.commands)) + " ;;\n";
  for (const Command& command : program.commands) {
    cases += "    " + std::string(command.name) + ") " +
             offerOperands(command, program, diagnostics) + " ;;\n";
  }
  return cases + "  esac\n";
}

}  // namespace

std::string bashCompletion(const Program& program, std::span<const Choice> diagnostics) {
  return std::string(kHead) + valueCases(program, diagnostics) + optionCases(program) +
         operandCases(program, diagnostics) + std::string(kTail);
}

}  // namespace tessera::commandline::generate
