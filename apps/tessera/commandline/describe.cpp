#include "tessera/commandline/describe.hpp"

#include <string_view>

#include "tessera/commandline/program.hpp"

namespace tessera::commandline {
namespace {

std::string nameOf(const Operand& operand) {
  std::string name(operand.name);
  if (operand.isRepeatable) name += "...";
  return operand.isRequired ? name : "[" + name + "]";
}

std::string describeChoices(const Option& option) {
  if (option.choices.empty()) return {};
  return " " + std::string(option.value) + " is " + listChoices(option) + ".";
}

std::string describeDefault(const Option& option) {
  const std::string_view text = defaultOf(option);
  return text.empty() ? std::string() : " Default: " + std::string(text) + ".";
}

}  // namespace

std::string usageOf(const Command& command) {
  std::string usage = "tessera " + std::string(command.name) + " [OPTION]...";
  for (const Operand& operand : command.operands) usage += " " + nameOf(operand);
  return usage;
}

std::string formsOf(const Option& option) {
  std::string forms;
  if (option.letter != '\0') forms.append("-").append(1, option.letter).append(", ");
  forms += option.name;
  if (!option.value.empty()) forms.append(" ").append(option.value);
  return forms;
}

std::string listChoices(const Option& option) {
  std::string list;
  for (std::size_t i = 0; i < option.choices.size(); ++i) {
    if (i > 0) list += i + 1 == option.choices.size() ? " or " : ", ";
    list += option.choices[i].name;
  }
  return list;
}

std::string describe(const Option& option) {
  std::string text = std::string(option.help) + describeChoices(option) + describeDefault(option);
  if (option.isRepeatable) text += " May be repeated.";
  return text;
}

}  // namespace tessera::commandline
