#include "tessera/commands/commandLine.hpp"

#include <unistd.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/commandline/CommandLine.hpp"
#include "tessera/commandline/helpText.hpp"
#include "tessera/commandline/program.hpp"
#include "tessera/commands/check.hpp"
#include "tessera/commands/doctor.hpp"
#include "tessera/commands/explain.hpp"
#include "tessera/commands/markers.hpp"
#include "tessera/commands/newBundle.hpp"
#include "tessera/commands/parse.hpp"
#include "tessera/commands/readOptions.hpp"
#include "tessera/commands/replay.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/commands/view.hpp"
#include "tessera/diagnostics/describeException.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/files/Interruption.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/files/standardStreams.hpp"
#include "tessera/terminal/settings.hpp"
#include "tessera/workers/WorkerPool.hpp"

namespace tessera::commands {
namespace {

int writeOutput(std::string text) {
  files::OutputFile output(STDOUT_FILENO, "standard output");
  output.text() = std::move(text);
  output.flush();
  return kFine;
}

int showHelp(const commandline::Command* subject) {
  const std::size_t columns = terminal::columnsOf(STDOUT_FILENO);
  return writeOutput(subject == nullptr ? commandline::helpText(commandline::program(), columns)
                                        : commandline::helpText(*subject, columns));
}

/// Says how to begin. There is nothing to do without arguments, so this is not a success.
int introduce() {
  std::string text =
      commandline::introduction(commandline::program(), terminal::columnsOf(STDERR_FILENO));
  text.pop_back();
  diagnostics::report(text);
  return kUnusable;
}

int runCommand(const commandline::Arguments& arguments) {
  const std::string_view name = arguments.of().name;
  if (name == "parse") return parse(readParseOptions(arguments));
  if (name == "check") return check(readCheckOptions(arguments));
  if (name == "markers") return markers(readMarkersOptions(arguments));
  if (name == "explain") return explain(readExplainOptions(arguments));
  if (name == "replay") return replay(readReplayOptions(arguments));
  if (name == "new-bundle") return newBundle(readNewBundleOptions(arguments));
  if (name == "view") return view(readViewOptions(arguments));
  if (name == "doctor") return doctor(readDoctorOptions(arguments));
  throw std::logic_error("the command " + std::string(name) + " does nothing");
}

int runRequest(const commandline::CommandLine& line) {
  switch (line.request) {
    case commandline::Request::kNothing:
      return introduce();
    case commandline::Request::kVersion:
      return writeOutput("tessera " TESSERA_VERSION "\n");
    case commandline::Request::kHelp:
      return showHelp(line.subject);
    case commandline::Request::kRun:
      break;
  }
  return runCommand(*line.arguments);
}

}  // namespace

int runCommandLine(int argumentCount, char** arguments) {
  files::reserveStandardStreams();
  files::setUpSignals();
  try {
    const std::vector<std::string> words(arguments + (argumentCount > 0 ? 1 : 0),
                                         arguments + argumentCount);
    return runRequest(commandline::readCommandLine(words));
  } catch (const workers::WorkerUnusable& error) {
    diagnostics::report(error.what());
  } catch (...) {
    diagnostics::reportException(diagnostics::report);
  }
  return kUnusable;
}

}  // namespace tessera::commands
