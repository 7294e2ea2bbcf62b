#include "tessera/commandline/failUsage.hpp"

#include <utility>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::commandline {

void failUsage(const Command* command, std::string what, const std::string& advice) {
  const std::string name = command == nullptr ? "" : " " + std::string(command->name);
  throw diagnostics::ProblemError(
      {.file = "tessera",
       .place = {},
       .what = std::move(what),
       .remedy = advice + "\"tessera" + name + " --help\" lists what there is"});
}

}  // namespace tessera::commandline
