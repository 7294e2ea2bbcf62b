#pragma once

#include <span>
#include <string_view>

namespace tessera::commandline {

/// What a shell offers as the value of an option or as an operand.
enum class Completion { kNothing, kFiles, kDirectories, kDiagnostics, kCommands };

/// A value of a closed list.
struct Choice {
  std::string_view name;
  std::string_view help;
};

/// An option. It is a flag if `value` is empty.
struct Option {
  /// '\0' if the option has no short form.
  char letter = '\0';
  /// The long form, with its dashes.
  std::string_view name;
  /// What the value is called in a usage line, in capital letters.
  std::string_view value = {};
  /// A sentence. The choices and the default are not part of it.
  std::string_view help = {};
  /// The values that are accepted, the default first unless `fallback` says otherwise; empty if
  /// the list is not closed.
  std::span<const Choice> choices = {};
  /// With choices: what a value is, for example "a format".
  std::string_view noun = {};
  /// What holds without the option; empty if that is the first choice, or nothing to speak of.
  std::string_view fallback = {};
  Completion completion = Completion::kNothing;
  bool isRepeatable = false;
  /// The name of an option without which this one is an error; may be empty.
  std::string_view needs = {};
  /// The name of an option with which this one is an error; may be empty.
  std::string_view excludes = {};
};

/// An argument that is not an option.
struct Operand {
  std::string_view name;
  std::string_view help;
  Completion completion = Completion::kFiles;
  bool isRequired = false;
  bool isRepeatable = false;
  /// The name of an option that takes the place of a required operand; may be empty.
  std::string_view substitute = {};
};

/// A command line that works in the folder `examples` of the sources.
struct Example {
  std::string_view line;
  std::string_view help;
};

/// Options under a common heading.
struct Group {
  std::string_view title;
  std::span<const Option> options;
};

struct Command {
  std::string_view name;
  /// One sentence.
  std::string_view summary;
  /// Further sentences; may be empty.
  std::string_view description;
  std::span<const Operand> operands;
  std::span<const Group> groups;
  std::span<const Example> examples;
};

/// An exit status or an environment variable.
struct Meaning {
  std::string_view name;
  std::string_view help;
};

/// The program as a whole.
struct Program {
  std::string_view name;
  std::string_view summary;
  std::string_view description;
  std::span<const Option> options;
  std::span<const Command> commands;
  std::span<const Example> examples;
  std::span<const Meaning> statuses;
  std::span<const Meaning> environment;
};

}  // namespace tessera::commandline
