#include "tessera/commands/commandLine.hpp"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>
#include <string>

#include "tessera/Problem.hpp"
#include "tessera/commands/check.hpp"
#include "tessera/commands/parse.hpp"
#include "tessera/commands/replay.hpp"
#include "tessera/commands/report.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/output/terminalText.hpp"

namespace tessera::commands {
namespace {

/// The options of all commands, and the way from arguments to them.
struct CommandLine {
  CommandLine();

  int run() const;

  CLI::App app{"Turns lines of source with comment markers into a structured document."};
  CLI::App* parseCommand = nullptr;
  CLI::App* checkCommand = nullptr;
  CLI::App* replayCommand = nullptr;
  ParseOptions parseOptions;
  CheckOptions checkOptions;
  ReplayOptions replayOptions;

 private:
  void addParse();
  void addCheck();
  void addReplay();
};

CommandLine::CommandLine() {
  app.name("tessera");
  app.set_version_flag("--version", std::string("tessera ") + TESSERA_VERSION);
  app.require_subcommand(1);
  app.failure_message([](const CLI::App*, const CLI::Error&) { return std::string(); });
  addParse();
  addCheck();
  addReplay();
}

void CommandLine::addParse() {
  static const std::map<std::string, ParseFormat> kFormats = {
      {"tree", ParseFormat::kTree}, {"json", ParseFormat::kJson}, {"ndjson", ParseFormat::kNdjson}};
  parseCommand = app.add_subcommand("parse", "Parse files and write their documents.");
  parseCommand->add_option("--format", parseOptions.format, "tree (the default), json or ndjson")
      ->type_name("FORMAT")
      ->transform(CLI::CheckedTransformer(kFormats).description(""));
  parseCommand->add_flag("--trace", parseOptions.trace, "Show the records that the parsers emit.");
  parseCommand
      ->add_option("--record", parseOptions.recordFile, "Write the calls for tessera replay.")
      ->type_name("FILE");
  parseCommand->add_option("--bundle", parseOptions.bundles, "Start a bundle of more parsers.")
      ->type_name("FILE")
      ->allow_extra_args(false);
  parseCommand->add_option("FILE", parseOptions.files, "The files to parse; - is standard input.")
      ->type_name("")
      ->required();
}

void CommandLine::addCheck() {
  checkCommand = app.add_subcommand("check", "Say what is wrong with the markers of files.");
  checkCommand->add_option("FILE", checkOptions.files, "The files to check; - is standard input.")
      ->type_name("")
      ->required();
}

void CommandLine::addReplay() {
  replayCommand = app.add_subcommand("replay", "Call the parsers as a file says, call by call.");
  replayCommand->add_option("--bundle", replayOptions.bundles, "Start a bundle of more parsers.")
      ->type_name("FILE")
      ->allow_extra_args(false);
  replayCommand
      ->add_option("FILE", replayOptions.file, "The file with the calls; - is standard input.")
      ->type_name("")
      ->required();
}

int CommandLine::run() const {
  if (parseCommand->parsed()) return parse(parseOptions);
  if (checkCommand->parsed()) return check(checkOptions);
  return replay(replayOptions);
}

/// Tells what cannot be used of the command line, and where to read what can.
int reportUsage(const CommandLine& line, const CLI::ParseError& error) {
  std::string help = "tessera";
  for (const CLI::App* command : line.app.get_subcommands()) help += " " + command->get_name();
  report(describe({.file = "tessera",
                   .place = {},
                   .what = error.what(),
                   .remedy = "\"" + help + " --help\" tells what there is"}));
  return kUnusable;
}

}  // namespace

int runCommandLine(int argumentCount, char** arguments) {
  CommandLine line;
  try {
    line.app.parse(argumentCount, arguments);
    return line.run();
  } catch (const CLI::ParseError& error) {
    // Help and version are of this type too.
    if (error.get_exit_code() == 0) return line.app.exit(error);
    return reportUsage(line, error);
  } catch (const ProblemError& error) {
    report(error.what());
  } catch (const std::exception& error) {
    report(describe({.file = "tessera",
                     .place = {},
                     .what = error.what(),
                     .remedy = "report it, or try again with fewer or smaller files"}));
  }
  return kUnusable;
}

}  // namespace tessera::commands
