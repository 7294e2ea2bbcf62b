#include "tessera/commands/commandLine.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "tessera/commands/check.hpp"
#include "tessera/commands/doctor.hpp"
#include "tessera/commands/explain.hpp"
#include "tessera/commands/markers.hpp"
#include "tessera/commands/parse.hpp"
#include "tessera/commands/replay.hpp"
#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"
#include "tessera/files/standardStreams.hpp"
#include "tessera/workers/WorkerPool.hpp"

namespace tessera::commands {
namespace {

ParseFormat readFormat(const std::string& name) {
  if (name == "tree") return ParseFormat::kTree;
  if (name == "json") return ParseFormat::kJson;
  if (name == "ndjson") return ParseFormat::kNdjson;
  throw CLI::ValidationError("\"" + name + "\" is not a format: use tree, json or ndjson");
}

CheckFormat readCheckFormat(const std::string& name) {
  if (name == "text") return CheckFormat::kText;
  if (name == "json") return CheckFormat::kJson;
  if (name == "sarif") return CheckFormat::kSarif;
  throw CLI::ValidationError("\"" + name + "\" is not a format: use text, json or sarif");
}

MarkersFormat readMarkersFormat(const std::string& name) {
  if (name == "text") return MarkersFormat::kText;
  if (name == "json") return MarkersFormat::kJson;
  throw CLI::ValidationError("\"" + name + "\" is not a format: use text or json");
}

ExplainFormat readExplainFormat(const std::string& name) {
  if (name == "text") return ExplainFormat::kText;
  if (name == "markdown") return ExplainFormat::kMarkdown;
  throw CLI::ValidationError("\"" + name + "\" is not a format: use text or markdown");
}

DoctorFormat readDoctorFormat(const std::string& name) {
  if (name == "text") return DoctorFormat::kText;
  if (name == "json") return DoctorFormat::kJson;
  throw CLI::ValidationError("\"" + name + "\" is not a format: use text or json");
}

FailOn readFailOn(const std::string& name) {
  if (name == "failure") return FailOn::kFailure;
  if (name == "warning") return FailOn::kWarning;
  if (name == "never") return FailOn::kNever;
  throw CLI::ValidationError("\"" + name + "\" is not a severity: use failure, warning or never");
}

terminal::ColorMode readColorMode(const std::string& name) {
  if (name == "auto") return terminal::ColorMode::kAuto;
  if (name == "always") return terminal::ColorMode::kAlways;
  if (name == "never") return terminal::ColorMode::kNever;
  throw CLI::ValidationError("\"" + name + "\" is not a way to colour: use auto, always or never");
}

progress::Mode readProgressMode(const std::string& name) {
  if (name == "always") return progress::Mode::kAlways;
  if (name == "never") return progress::Mode::kNever;
  throw CLI::ValidationError("\"" + name + "\" is not a way to show progress: use always or never");
}

std::string readRecordFile(const std::string& name) {
  if (!name.empty() && name != "-") return name;
  throw CLI::ValidationError("\"" + name + "\" is not a file to record to: name a file");
}

void addBundles(CLI::App& command, std::vector<std::string>& bundles) {
  command.add_option("--bundle", bundles, "Start a bundle with more parsers; may be repeated.")
      ->type_name("FILE")
      ->allow_extra_args(false)
      ->check([](const std::string& name) {
        return std::string(name.empty() ? "\"\" is not a bundle: name its library" : "");
      });
}

void addBare(CLI::App& command, host::Pieces& pieces) {
  command.add_flag_callback(
      "--bare", [&pieces] { pieces = host::Pieces::kDropped; },
      "Drop the pieces of output and control markers, as the parsers do without other bundles.");
}

std::string readOutputFile(const std::string& name) {
  if (name.empty()) throw CLI::ValidationError("\"\" is not a file to write: name a file");
  return name == "-" ? std::string() : name;
}

std::uint64_t readCount(std::string_view digits) {
  std::uint64_t count = 0;
  const auto [end, error] = std::from_chars(digits.begin(), digits.end(), count);
  return error == std::errc() && end == digits.end() ? count : 0;
}

inputs::Shard readShard(const std::string& text) {
  const std::size_t slash = std::min(text.find('/'), text.size());
  const std::string_view index = std::string_view(text).substr(0, slash);
  const std::string_view count = std::string_view(text).substr(std::min(slash + 1, text.size()));
  const inputs::Shard shard{.index = readCount(index), .count = readCount(count)};
  if (shard.index != 0 && shard.index <= shard.count) return shard;
  throw CLI::ValidationError("\"" + text + "\" is not a shard: use I/N with 1 <= I <= N");
}

std::size_t readWorkers(const std::string& text) {
  constexpr std::uint64_t kMostWorkers = 1024;
  const std::uint64_t count = readCount(text);
  if (count != 0 && count <= kMostWorkers) return count;
  throw CLI::ValidationError("\"" + text + "\" is not a number of workers: use 1 to 1024");
}

std::chrono::milliseconds readTimeout(const std::string& text) {
  constexpr double kMostSeconds = 1e6;
  double seconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (error == std::errc() && end == text.data() + text.size() && seconds >= 0.001 &&
      seconds <= kMostSeconds) {
    return std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
  }
  throw CLI::ValidationError("\"" + text + "\" is not a time: use seconds, for example 30 or 0.5");
}

void addInputs(CLI::App& command, inputs::InputOptions& inputs) {
  auto* const paths = command.add_option(
      "PATH", inputs.paths, "Files, directories with all that is below, and - for standard input.");
  paths->type_name("");
  auto* const list =
      command
          .add_option("--files-from", inputs.listFile,
                      "Read more paths from a file, one per line; - is standard input.")
          ->type_name("FILE");
  command
      .add_flag("-0", inputs.isNulSeparated, "Paths in that file end in NUL, not in a line feed.")
      ->needs(list);
  command
      .add_option(
          "--glob", inputs.globs,
          "Of directories, take files that match (as in .gitignore); \"!GLOB\" leaves files "
          "out. May be repeated.")
      ->type_name("GLOB")
      ->allow_extra_args(false);
  command.add_flag_callback(
      "--no-ignore", [&inputs] { inputs.respectsIgnoreFiles = false; },
      "Of directories, also take files that .gitignore excludes.");
  command
      .add_option_function<std::string>(
          "--shard", [&inputs](const std::string& text) { inputs.shard = readShard(text); },
          "Take every N-th file, from the I-th on.")
      ->type_name("I/N");
  command.callback([paths, list] {
    if (paths->empty() && list->empty()) throw CLI::RequiredError("PATH");
  });
}

/// Adds the options that say which files are read, in how many processes, and where the output
/// goes. `resumable` names the output that --resume continues.
void addRun(CLI::App& command, run::RunOptions& options, const std::string& resumable) {
  addInputs(command, options.inputs);
  options.workers = std::max(1U, std::thread::hardware_concurrency());
  command
      .add_option_function<std::string>(
          "-j,--jobs", [&options](const std::string& text) { options.workers = readWorkers(text); },
          "The number of worker processes; without it, that of the processor's cores.")
      ->type_name("N");
  command
      .add_option_function<std::string>(
          "--timeout", [&options](const std::string& text) { options.timeout = readTimeout(text); },
          "Give up a file after that time.")
      ->type_name("SECONDS");
  command
      .add_option_function<std::string>(
          "--progress",
          [&options](const std::string& name) { options.progress = readProgressMode(name); },
          "Whether to show how far the run is: always or never; without it, on a terminal.")
      ->type_name("WHEN");
  auto* const output = command.add_option_function<std::string>(
      "-o,--output",
      [&options](const std::string& name) { options.outputFile = readOutputFile(name); },
      "Write to a file, which appears when it is complete.");
  output->type_name("FILE");
  command
      .add_flag("--resume", options.resumes,
                "Continue what an interrupted run has written to FILE.partial (with " + resumable +
                    " and -o).")
      ->needs(output);
}

/// The options of all commands, and how arguments set them.
struct CommandLine {
  CommandLine();

  int run() const;

  CLI::App app{"Turns lines of source with comment markers into a structured document."};
  CLI::App* parseCommand = nullptr;
  CLI::App* checkCommand = nullptr;
  CLI::App* markersCommand = nullptr;
  CLI::App* explainCommand = nullptr;
  CLI::App* replayCommand = nullptr;
  CLI::App* doctorCommand = nullptr;
  ParseOptions parseOptions;
  CheckOptions checkOptions;
  MarkersOptions markersOptions;
  ExplainOptions explainOptions;
  ReplayOptions replayOptions;
  DoctorOptions doctorOptions;

 private:
  void addParse();
  void addCheck();
  void addMarkers();
  void addExplain();
  void addReplay();
  void addDoctor();
};

CommandLine::CommandLine() {
  app.name("tessera");
  app.set_version_flag("--version", std::string("tessera ") + TESSERA_VERSION);
  app.require_subcommand(1);
  addParse();
  addCheck();
  addMarkers();
  addExplain();
  addReplay();
  addDoctor();
}

void CommandLine::addParse() {
  parseCommand = app.add_subcommand("parse", "Parse files and write their documents.");
  parseCommand
      ->add_option_function<std::string>(
          "--format", [this](const std::string& name) { parseOptions.format = readFormat(name); },
          "How documents are written: tree (the default), json or ndjson.")
      ->type_name("FORMAT");
  parseCommand->add_flag_callback(
      "--omit-empty",
      [this] { parseOptions.emptyMembers = foundation::json::EmptyMembers::kOmitted; },
      "Leave out JSON members whose value is empty: \"\", [], {}, null, false or 0.");
  parseCommand->add_flag("--trace", parseOptions.trace, "Show the records that the parsers emit.");
  parseCommand
      ->add_option_function<std::string>(
          "--record",
          [this](const std::string& name) { parseOptions.recordFile = readRecordFile(name); },
          "Write the calls of the parsers for tessera replay.")
      ->type_name("FILE");
  parseCommand->add_flag("--force", parseOptions.replacesAnyFile,
                         "With --record: also replace a file that is not a recording.");
  addBare(*parseCommand, parseOptions.pieces);
  addBundles(*parseCommand, parseOptions.bundles);
  addRun(*parseCommand, parseOptions.run, "--format ndjson");
}

void CommandLine::addCheck() {
  checkCommand = app.add_subcommand("check", "Say what is wrong with the markers of files.");
  auto* const format = checkCommand->add_option_function<std::string>(
      "--format", [this](const std::string& name) { checkOptions.format = readCheckFormat(name); },
      "How diagnostics are written: text (the default), json or sarif.");
  format->type_name("FORMAT");
  checkCommand
      ->add_option_function<std::string>(
          "--fail-on", [this](const std::string& name) { checkOptions.failOn = readFailOn(name); },
          "The severity from which on the exit status is 1: failure (the default), warning or "
          "never.")
      ->type_name("SEVERITY");
  checkCommand
      ->add_option_function<std::string>(
          "--color", [this](const std::string& name) { checkOptions.color = readColorMode(name); },
          "When text is coloured: auto (the default; on a terminal), always or never.")
      ->type_name("WHEN");
  auto* const fix = checkCommand->add_flag_callback(
      "--fix", [this] { checkOptions.fixes = Fixes::kApplied; },
      "Make the fixes that are safe, and write what is left.");
  checkCommand
      ->add_flag_callback(
          "--dry-run", [this] { checkOptions.fixes = Fixes::kShown; },
          "With --fix: change nothing, and write the fixes as a unified diff.")
      ->needs(fix)
      ->excludes(format);
  addBare(*checkCommand, checkOptions.pieces);
  addBundles(*checkCommand, checkOptions.bundles);
  addRun(*checkCommand, checkOptions.run, "--format json");
}

void CommandLine::addMarkers() {
  markersCommand =
      app.add_subcommand("markers", "List the markers of files and what became of each.");
  markersCommand
      ->add_option_function<std::string>(
          "--format",
          [this](const std::string& name) { markersOptions.format = readMarkersFormat(name); },
          "How markers are written: text (the default) or json.")
      ->type_name("FORMAT");
  addBare(*markersCommand, markersOptions.pieces);
  addBundles(*markersCommand, markersOptions.bundles);
  addRun(*markersCommand, markersOptions.run, "--format json");
}

void CommandLine::addExplain() {
  explainCommand = app.add_subcommand("explain", "Say what a diagnostic of check means.");
  explainCommand
      ->add_option_function<std::string>(
          "--format",
          [this](const std::string& name) { explainOptions.format = readExplainFormat(name); },
          "How it is written: text (the default) or markdown.")
      ->type_name("FORMAT");
  explainCommand->add_option("ID", explainOptions.id, "The diagnostic; without it, all are listed.")
      ->type_name("");
}

void CommandLine::addReplay() {
  replayCommand = app.add_subcommand("replay", "Call the parsers as a file says, call by call.");
  addBundles(*replayCommand, replayOptions.bundles);
  replayCommand
      ->add_option("FILE", replayOptions.file, "The file with the calls; - is standard input.")
      ->type_name("")
      ->required();
}

void CommandLine::addDoctor() {
  doctorCommand = app.add_subcommand(
      "doctor", "Show what the program is made of and would load, and what is wrong with it.");
  doctorCommand
      ->add_option_function<std::string>(
          "--format",
          [this](const std::string& name) { doctorOptions.format = readDoctorFormat(name); },
          "How it is written: text (the default) or json.")
      ->type_name("FORMAT");
  addBundles(*doctorCommand, doctorOptions.bundles);
}

int CommandLine::run() const {
  if (parseCommand->parsed()) return parse(parseOptions);
  if (checkCommand->parsed()) return check(checkOptions);
  if (markersCommand->parsed()) return markers(markersOptions);
  if (explainCommand->parsed()) return explain(explainOptions);
  if (doctorCommand->parsed()) return doctor(doctorOptions);
  return replay(replayOptions);
}

/// Says what is wrong with the arguments: the first one that is unknown, else what is missing.
std::string describeUsage(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = app.remaining(true);
  if (unknown.empty()) return error.what();
  const std::string kind = unknown.front().starts_with('-') ? "option" : "command";
  return "unknown " + kind + " \"" + unknown.front() + "\"";
}

/// Reports what is wrong with the command line and returns the exit status.
int reportUsage(const CommandLine& line, const CLI::ParseError& error) {
  std::string help = "tessera";
  for (const CLI::App* command : line.app.get_subcommands()) help += " " + command->get_name();
  diagnostics::report(
      diagnostics::describe({.file = "tessera",
                             .place = {},
                             .what = describeUsage(line.app, error),
                             .remedy = "\"" + help + " --help\" lists what there is"}));
  return kUnusable;
}

/// Writes the requested help or version.
int showHelp(const CommandLine& line, const CLI::ParseError& request) {
  line.app.exit(request);
  if (std::cout.flush()) return kFine;
  diagnostics::report(
      diagnostics::describe({.file = "standard output",
                             .place = {},
                             .what = "cannot be written",
                             .remedy = "make room, or name a file that can be written"}));
  return kUnusable;
}

}  // namespace

int runCommandLine(int argumentCount, char** arguments) {
  files::reserveStandardStreams();
  CommandLine line;
  try {
    line.app.parse(argumentCount, arguments);
    return line.run();
  } catch (const CLI::ParseError& error) {
    // Help and version are of this type too.
    if (error.get_exit_code() == 0) return showHelp(line, error);
    return reportUsage(line, error);
  } catch (const diagnostics::ProblemError& error) {
    diagnostics::report(error.what());
  } catch (const workers::WorkerUnusable& error) {
    diagnostics::report(error.what());
  } catch (const std::exception& error) {
    diagnostics::report(
        diagnostics::describe({.file = "tessera",
                               .place = {},
                               .what = error.what(),
                               .remedy = "report it, or try again with fewer or smaller files"}));
  }
  return kUnusable;
}

}  // namespace tessera::commands
