#include "tessera/commandline/CommandLine.hpp"

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "tessera/commandline/failUsage.hpp"
#include "tessera/commandline/program.hpp"
#include "tessera/commandline/readArguments.hpp"
#include "tessera/commandline/suggest.hpp"

namespace tessera::commandline {
namespace {

/// Returns what was perhaps meant by a command that does not exist.
std::string adviceOnCommand(const std::string& name) {
  std::vector<std::string_view> names;
  for (const Command& command : program().commands) names.push_back(command.name);
  std::string advice = suggest(name, names);
  std::error_code error;
  if (advice.empty() && std::filesystem::exists(name, error)) {
    advice = "\"tessera parse " + name + "\" parses it; ";
  }
  return advice;
}

const Command& requireCommand(const std::string& name) {
  if (const Command* const command = findCommand(name)) return *command;
  failUsage(nullptr, "unknown command \"" + name + "\"", adviceOnCommand(name));
}

/// Returns the option that `word` names by its letter or in full; null if there is none.
const Option* findProgramOption(std::string_view word) {
  for (const Option& option : program().options) {
    const bool isLetter = word.size() == 2 && word[0] == '-' && word[1] == option.letter;
    if (word == option.name || isLetter) return &option;
  }
  return nullptr;
}

const Option& requireProgramOption(const std::string& word) {
  if (const Option* const option = findProgramOption(word)) return *option;
  const std::string name = word.substr(0, word.find('='));
  if (const Option* const option = findProgramOption(name)) {
    failUsage(nullptr, "\"" + std::string(option->name) + "\" takes no value", {});
  }
  std::vector<std::string_view> names;
  for (const Option& option : program().options) names.push_back(option.name);
  failUsage(nullptr, "unknown option \"" + name + "\"", suggest(name, names));
}

/// Takes the options before the command from the start of `words` and returns what they ask for.
Request takeProgramOptions(std::span<const std::string>& words) {
  Request request = Request::kNothing;
  for (; !words.empty() && words.front().starts_with('-'); words = words.subspan(1)) {
    const bool isHelp = requireProgramOption(words.front()).name == "--help";
    // The help tells more than the version.
    if (request != Request::kHelp) request = isHelp ? Request::kHelp : Request::kVersion;
  }
  return request;
}

/// Returns what the arguments of a command ask for, after the options before it asked for
/// `request`.
CommandLine combine(Request request, Arguments arguments) {
  CommandLine line;
  const bool isHelpCommand = arguments.of().name == "help";
  const bool namesSubject = isHelpCommand && !arguments.operands().empty();
  if (namesSubject) line.subject = &requireCommand(arguments.operands().front());
  line.request = request;
  if (request == Request::kVersion) return line;
  const bool wantsHelp = request == Request::kHelp || arguments.has("--help");
  if (wantsHelp && !namesSubject) line.subject = &arguments.of();
  line.request = wantsHelp || isHelpCommand ? Request::kHelp : Request::kRun;
  line.arguments = std::move(arguments);
  return line;
}

}  // namespace

CommandLine readCommandLine(std::span<const std::string> words) {
  const Request request = takeProgramOptions(words);
  if (words.empty()) return {.request = request, .subject = nullptr, .arguments = {}};
  const Command& command = requireCommand(words.front());
  return combine(request, readArguments(command, {words.begin() + 1, words.end()},
                                        request == Request::kNothing ? Completeness::kRequired
                                                                     : Completeness::kOptional));
}

}  // namespace tessera::commandline
