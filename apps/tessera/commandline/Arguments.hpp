#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessera/commandline/Command.hpp"

namespace tessera::commandline {

/// The options and operands that were given to a command.
class Arguments {
 public:
  /// Keeps a reference to `command`.
  explicit Arguments(const Command& command) : command(&command) {}

  /// Adds an option; `value` is empty for a flag.
  void add(const Option& option, std::string value);
  void addOperand(std::string operand) { given.push_back(std::move(operand)); }

  const Command& of() const noexcept { return *command; }
  const std::vector<std::string>& operands() const noexcept { return given; }

  // `name` is the long name of an option that the command has; std::logic_error is thrown
  // otherwise.

  bool has(std::string_view name) const { return !values(name).empty(); }
  /// Returns the values in the order in which they were given, one per use of the option.
  const std::vector<std::string>& values(std::string_view name) const;
  /// Returns the last value, or null.
  const std::string* find(std::string_view name) const;

 private:
  const Command* command;
  std::map<std::string_view, std::vector<std::string>> options;
  std::vector<std::string> given;
};

}  // namespace tessera::commandline
