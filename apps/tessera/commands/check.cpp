#include "tessera/commands/check.hpp"

#include <unistd.h>

#include <algorithm>

#include "tessera/check/findWarnings.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/host/ServiceHost.hpp"
#include "tessera/session/FileParser.hpp"

namespace tessera::commands {
namespace {

std::string describe(const std::string& file, const source::AppendixWarning& warning) {
  return diagnostics::terminalText(file) + ':' + std::to_string(warning.place.line) + ':' +
         std::to_string(warning.place.column) + ": warning: " + warning.text + '\n';
}

}  // namespace

int check(const CheckOptions& options) {
  host::ServiceHost host({});
  session::SnippetSession session(host.snippetParsers(), nullptr, nullptr);
  session::FileParser parser(session, host.appendix(), nullptr);
  files::OutputFile standardOutput(STDOUT_FILENO, "standard output");
  int status = kFine;
  for (const std::string& name : options.files) {
    try {
      for (const auto& warning : check::findWarnings(parser.parse(name))) {
        standardOutput.text() += describe(name, warning);
        status = std::max(status, kFailuresFound);
      }
    } catch (const diagnostics::ProblemError& error) {
      diagnostics::report(error.what());
      status = kUnusable;
    }
    standardOutput.flush();
  }
  return status;
}

}  // namespace tessera::commands
