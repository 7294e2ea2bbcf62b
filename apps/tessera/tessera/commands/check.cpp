#include "tessera/commands/check.hpp"

#include <unistd.h>

#include <algorithm>

#include "tessera/Problem.hpp"
#include "tessera/commands/FileParser.hpp"
#include "tessera/commands/findWarnings.hpp"
#include "tessera/commands/report.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/output/OutputFile.hpp"
#include "tessera/output/terminalText.hpp"
#include "tessera/services/ServiceHost.hpp"

namespace tessera::commands {
namespace {

std::string describe(const std::string& file, const appendix::AppendixWarning& warning) {
  return output::terminalText(file) + ':' + std::to_string(warning.place.line) + ':' +
         std::to_string(warning.place.column) + ": warning: " + warning.text + '\n';
}

}  // namespace

int check(const CheckOptions& options) {
  services::ServiceHost host({});
  session::SnippetSession session(host.snippetParsers(), nullptr, nullptr);
  FileParser parser(session, host.appendix(), nullptr);
  output::OutputFile standardOutput(STDOUT_FILENO, "standard output");
  int status = kFine;
  for (const std::string& name : options.files) {
    try {
      for (const auto& warning : findWarnings(parser.parse(name))) {
        standardOutput.text() += describe(name, warning);
        status = std::max(status, kFailuresFound);
      }
    } catch (const ProblemError& error) {
      report(error.what());
      status = kUnusable;
    }
    standardOutput.flush();
  }
  return status;
}

}  // namespace tessera::commands
