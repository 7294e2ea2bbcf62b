#pragma once

#include <optional>
#include <span>
#include <string>

#include "tessera/commandline/Arguments.hpp"
#include "tessera/commandline/Command.hpp"

namespace tessera::commandline {

/// What the user asks the program for. kNothing: there are no arguments.
enum class Request { kNothing, kVersion, kHelp, kRun };

struct CommandLine {
  Request request = Request::kNothing;
  /// With kHelp: the command that the help is about; null: the program.
  const Command* subject = nullptr;
  /// With kRun.
  std::optional<Arguments> arguments;
};

/// Returns what `words`, the arguments of the program without its name, say. Throws ProblemError
/// for whatever cannot be understood, also if the help is asked for.
CommandLine readCommandLine(std::span<const std::string> words);

}  // namespace tessera::commandline
