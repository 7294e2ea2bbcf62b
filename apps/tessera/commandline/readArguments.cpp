#include "tessera/commandline/readArguments.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "tessera/commandline/describe.hpp"
#include "tessera/commandline/failUsage.hpp"
#include "tessera/commandline/program.hpp"
#include "tessera/commandline/suggest.hpp"

namespace tessera::commandline {
namespace {

std::string inQuotes(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

/// Parses the arguments of one command with CLI11. Everything that it would report is checked here,
/// so that the messages are the same for all options.
class Reader {
 public:
  explicit Reader(const Command& command) : command(command) {
    app.set_help_flag("");
    app.allow_extras();
    for (const Group& group : command.groups) {
      for (const Option& option : group.options) add(option);
    }
    for (const Operand& operand : command.operands) add(operand);
  }

  Arguments read(std::vector<std::string> words, Completeness completeness) {
    parse(std::move(words));
    rejectExtras();
    Arguments arguments(command);
    for (const auto& [option, parsed] : options) take(*option, *parsed, arguments);
    for (const auto& [operand, parsed] : operands) {
      for (const std::string& text : parsed->results()) arguments.addOperand(text);
    }
    const bool wantsHelp = arguments.has(kHelpName);
    if (completeness == Completeness::kRequired && !wantsHelp) requireAll(arguments);
    return arguments;
  }

 private:
  static constexpr std::string_view kHelpName = "--help";

  void add(const Option& option) {
    std::string names(option.name);
    if (option.letter != '\0') names = std::string("-") + option.letter + "," + names;
    CLI::Option* const parsed =
        option.value.empty() ? app.add_flag(names)->disable_flag_override() : app.add_option(names);
    parsed->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    options.emplace_back(&option, parsed);
  }

  void add(const Operand& operand) {
    CLI::Option* const parsed = app.add_option(std::string(operand.name));
    if (operand.isRepeatable) {
      // An option that takes extra arguments would read "[a,b]" as a list of values. This one
      // needs as many values as there can be, which is checked nowhere.
      constexpr int kMost = CLI::detail::expected_max_vector_size;
      parsed->expected(kMost, kMost);
      parsed->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
    operands.emplace_back(&operand, parsed);
  }

  void parse(std::vector<std::string> words) {
    separateEmptyValues(words);
    // CLI11 takes the words from the end.
    std::ranges::reverse(words);
    try {
      app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
      explain(error);
    }
  }

  /// Replaces "--name=" by "--name" and "". CLI11 would take the next word as the value.
  void separateEmptyValues(std::vector<std::string>& words) const {
    for (std::size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
      const std::string_view word = words[i];
      if (word.size() < 2 || !word.starts_with("--") || !word.ends_with('=')) continue;
      const Option* const option = findOption(command, word.substr(0, word.size() - 1));
      if (option == nullptr || option->value.empty()) continue;
      words[i].pop_back();
      words.insert(words.begin() + static_cast<std::ptrdiff_t>(i) + 1, "");
    }
  }

  /// Reports a value that is missing or that is given to a flag: nothing else is left to CLI11.
  [[noreturn]] void explain(const CLI::ParseError& error) const {
    const std::string text = error.what();
    const std::string subject = text.substr(0, text.find_first_of(": "));
    for (const auto& [option, parsed] : options) {
      // The dashes of a flag are left out.
      if (subject != option->name && "--" + subject != option->name) continue;
      const std::string name = inQuotes(option->name);
      if (option->value.empty()) failUsage(&command, name + " takes no value", {});
      failUsage(&command, name + " needs a value: " + std::string(option->value), {});
    }
    failUsage(&command, text, {});
  }

  void rejectExtras() const {
    for (const std::string& extra : app.remaining()) {
      if (extra == "--") continue;
      if (!extra.starts_with('-') || extra == "-") {
        failUsage(&command, "unexpected argument " + inQuotes(extra), {});
      }
      const std::string name = extra.substr(0, extra.find('='));
      failUsage(&command, "unknown option " + inQuotes(name), adviceOn(name));
    }
  }

  /// Returns what was perhaps meant by an option that the command does not have.
  std::string adviceOn(const std::string& name) const {
    for (const Command& other : program().commands) {
      if (findOption(other, name) == nullptr) continue;
      return "it is an option of \"tessera " + std::string(other.name) + "\"; ";
    }
    std::vector<std::string_view> names;
    names.reserve(options.size());
    for (const auto& [option, parsed] : options) names.push_back(option->name);
    return suggest(name, names);
  }

  void take(const Option& option, const CLI::Option& parsed, Arguments& arguments) const {
    const bool isFlag = option.value.empty();
    if (parsed.count() > 1 && !isFlag && !option.isRepeatable) {
      failUsage(&command, inQuotes(option.name) + " is given twice", {});
    }
    for (const std::string& value : parsed.results()) {
      if (!isFlag) requireChoice(option, value);
      arguments.add(option, isFlag ? std::string() : value);
    }
  }

  void requireChoice(const Option& option, const std::string& value) const {
    std::vector<std::string_view> names;
    for (const Choice& choice : option.choices) names.push_back(choice.name);
    if (names.empty() || std::ranges::find(names, value) != names.end()) return;
    failUsage(
        &command,
        inQuotes(value) + " is not " + std::string(option.noun) + ": use " + listChoices(option),
        suggest(value, names));
  }

  void requireAll(const Arguments& arguments) const {
    for (const auto& [option, parsed] : options) {
      if (!arguments.has(option->name)) continue;
      if (!option->needs.empty() && !arguments.has(option->needs)) {
        failUsage(&command, inQuotes(option->name) + " needs " + inQuotes(option->needs), {});
      }
      if (!option->excludes.empty() && arguments.has(option->excludes)) {
        failUsage(&command,
                  inQuotes(option->name) + " cannot be used with " + inQuotes(option->excludes),
                  {});
      }
    }
    for (const auto& [operand, parsed] : operands) {
      const bool isReplaced = !operand->substitute.empty() && arguments.has(operand->substitute);
      if (!operand->isRequired || isReplaced || !parsed->empty()) continue;
      failUsage(&command, std::string(operand->name) + " is required", {});
    }
  }

  const Command& command;
  CLI::App app;
  std::vector<std::pair<const Option*, CLI::Option*>> options;
  std::vector<std::pair<const Operand*, CLI::Option*>> operands;
};

}  // namespace

Arguments readArguments(const Command& command, std::vector<std::string> words,
                        Completeness completeness) {
  return Reader(command).read(std::move(words), completeness);
}

}  // namespace tessera::commandline
