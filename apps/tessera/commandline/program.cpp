#include "tessera/commandline/program.hpp"

#include <algorithm>

#include "tessera/commandline/sharedOptions.hpp"

namespace tessera::commandline {
namespace {

constexpr Choice kParseFormats[] = {
    {"tree", "for people"},
    {"json", "the whole document, indented"},
    {"ndjson", "the same, one line per file"},
    {"html", "one page about all files, for a browser"},
};
constexpr Choice kColors[] = {
    {"auto", "on a terminal, unless NO_COLOR is set"},
    {"always", "whatever the output is"},
    {"never", "not at all"},
};
constexpr Option colorOption(std::string_view help) {
  return {.name = "--color",
          .value = "WHEN",
          .help = help,
          .choices = kColors,
          .noun = "a way to colour"};
}
constexpr Option kParseOptions[] = {
    {.name = "--format",
     .value = "FORMAT",
     .help = "How documents are written.",
     .choices = kParseFormats,
     .noun = "a format"},
    {.name = "--omit-empty",
     .help = "With format json or ndjson: leave out members whose value is empty: \"\", [], {}, "
             "null, false or 0."},
    {.name = "--trace",
     .help = "Show the records that the parsers emit; in a tree, everything about each line."},
    {.name = "--width",
     .value = "COLUMNS",
     .help = "The longest row of a tree.",
     .fallback = "the width of the terminal"},
    colorOption("When a tree is coloured."),
    {.name = "--record",
     .value = "FILE",
     .help = "Write the calls of the parsers for tessera replay.",
     .completion = Completion::kFiles,
     .excludes = "--resume"},
    {.name = "--force",
     .help = "With --record: also replace a file that is not a recording.",
     .needs = "--record"},
};
constexpr Group kParseGroups[] = {{"Document", kParseOptions}, kBundles, kInput, kRun, kGeneral};
constexpr Example kParseExamples[] = {
    {"tessera parse fit.py", "Show the document of a file."},
    {"tessera parse --format json fit.py", "The whole document, for other programs."},
    {"tessera parse --format html -o page.html .", "A page about all files of a folder."},
    {"tessera parse --format ndjson --glob '*.py' .", "All Python files, one record per line."},
    {"echo '# <@task#t1>' | tessera parse --trace -", "Show what the parsers do with a line."},
};

constexpr Choice kCheckFormats[] = {
    {"text", "for people, with the source"},
    {"json", "one record per file"},
    {"sarif", "one SARIF log, for code review"},
};
constexpr Choice kSeverities[] = {
    {"failure", "what the parsers refuse"},
    {"warning", "also what is only suspect"},
    {"never", "nothing"},
};
constexpr Option kCheckOptions[] = {
    {.name = "--format",
     .value = "FORMAT",
     .help = "How diagnostics are written.",
     .choices = kCheckFormats,
     .noun = "a format"},
    {.name = "--fail-on",
     .value = "SEVERITY",
     .help = "The severity from which on the exit status is 1.",
     .choices = kSeverities,
     .noun = "a severity"},
    colorOption("When format text is coloured."),
    {.name = "--fix", .help = "Make the fixes that are safe, and write what is left."},
    {.name = "--dry-run",
     .help = "With --fix: change nothing, and write the fixes as a unified diff.",
     .needs = "--fix",
     .excludes = "--format"},
};
constexpr Group kCheckGroups[] = {{"Diagnostics", kCheckOptions}, kBundles, kInput, kRun, kGeneral};
constexpr Example kCheckExamples[] = {
    {"tessera check damaged.py", "Say what is wrong with the markers of a file."},
    {"tessera check --fix --dry-run damaged.py", "Show the fixes as a diff."},
    {"tessera check --format sarif -o check.sarif .", "A log for a code review tool."},
    {"tessera check --fail-on warning fit.py", "Be strict, for example before a commit."},
};

constexpr Choice kTextOrJson[] = {
    {"text", "for people"},
    {"json", "for other programs"},
};
constexpr Option kMarkersOptions[] = {
    {.name = "--format",
     .value = "FORMAT",
     .help = "How markers are written.",
     .choices = kTextOrJson,
     .noun = "a format"},
};
constexpr Group kMarkersGroups[] = {{"List", kMarkersOptions}, kBundles, kInput, kRun, kGeneral};
constexpr Example kMarkersExamples[] = {
    {"tessera markers .", "List the markers of all files here and below."},
    {"tessera markers --format json fit.py", "The same as JSON, for one file."},
};

constexpr Choice kExplainFormats[] = {
    {"text", "for people"},
    {"markdown", "for a page"},
};
constexpr Option kExplainOptions[] = {
    {.name = "--format",
     .value = "FORMAT",
     .help = "How the explanation is written.",
     .choices = kExplainFormats,
     .noun = "a format"},
    kHelp,
};
constexpr Group kExplainGroups[] = {{"Options", kExplainOptions}};
constexpr Operand kExplainOperands[] = {
    {.name = "ID",
     .help = "The id of a diagnostic; without it, all are listed.",
     .completion = Completion::kDiagnostics},
};
constexpr Example kExplainExamples[] = {
    {"tessera explain", "List the diagnostics."},
    {"tessera explain invalid_position_data", "Say what one means and what to do."},
};

constexpr Group kReplayGroups[] = {kBundlesAlone, kGeneral};
constexpr Operand kReplayOperands[] = {
    {.name = "FILE", .help = "The file with the calls; - is standard input.", .isRequired = true},
};
constexpr Example kReplayExamples[] = {
    {"tessera parse --bare --record calls.ndjson fit.py", "Record the calls of the parsers."},
    {"tessera replay calls.ndjson", "Make the same calls again, and write the answers."},
};

constexpr Option kViewOptions[] = {
    {.name = "--port",
     .value = "N",
     .help = "The port of 127.0.0.1 that the page is served at.",
     .fallback = "any free one"},
    {.name = "--no-browser", .help = "Only write the address of the page."},
    {.name = "--close-after",
     .value = "SECONDS",
     .help = "End when the page has been closed for that time.",
     .fallback = "60"},
};
constexpr Group kViewGroups[] = {{"Page", kViewOptions}, kBundles, kInput, kGeneral};
constexpr Example kViewExamples[] = {
    {"tessera view fit.py", "Show a page about a file, which follows what you type."},
    {"tessera view --no-browser .", "Write the address of a page about all files here."},
};

constexpr Option kDoctorOptions[] = {
    {.name = "--format",
     .value = "FORMAT",
     .help = "How the diagnosis is written.",
     .choices = kTextOrJson,
     .noun = "a format"},
    kBundle,
    kHelp,
};
constexpr Group kDoctorGroups[] = {{"Options", kDoctorOptions}};
constexpr Example kDoctorExamples[] = {
    {"tessera doctor", "Show what the program is made of, and what is wrong with it."},
    {"tessera doctor --format json", "The same for other programs."},
};

constexpr Group kNewBundleGroups[] = {kGeneral};
constexpr Operand kNewBundleOperands[] = {
    {.name = "NAME",
     .help = "The name of the bundle: lower-case words with \"_\" between them.",
     .completion = Completion::kNothing,
     .isRequired = true},
    {.name = "DIRECTORY",
     .help = "The folder to write to, which must be empty or not exist.",
     .completion = Completion::kDirectories,
     .isRequired = true},
};
constexpr Example kNewBundleExamples[] = {
    {"tessera new-bundle word_count word-count", "Write a bundle that parses control:word_count."},
};

constexpr Group kHelpGroups[] = {kGeneral};
constexpr Operand kHelpOperands[] = {
    {.name = "COMMAND",
     .help = "The command; without it, all are listed.",
     .completion = Completion::kCommands},
};
constexpr Example kHelpExamples[] = {
    {"tessera help", "List the commands."},
    {"tessera help check", "Show the options of a command, with examples."},
};

constexpr Command kCommands[] = {
    {"parse", "Parse files and write their documents.",
     "A document has one node per line. Markers in comments say what the text around them is: a "
     "task, an anchor, an output or a control.",
     kPaths, kParseGroups, kParseExamples},
    {"check", "Say what is wrong with the markers of files.",
     "A marker that is slightly wrong is ordinary text, and the parsers say nothing. This command "
     "finds it, says why, and fixes what can be fixed safely.",
     kPaths, kCheckGroups, kCheckExamples},
    {"markers", "List the markers of files and what became of each.", "", kPaths, kMarkersGroups,
     kMarkersExamples},
    {"view", "Show the page of parse --format html, and follow the changes of the files.",
     "The page is served to this machine only, at an address that nobody can guess. The command "
     "writes the address, opens it in a browser if there is one, and ends when the page has been "
     "closed for a while, or with Ctrl-C.",
     kWatchedPaths, kViewGroups, kViewExamples},
    {"explain", "Say what a diagnostic of check means.", "", kExplainOperands, kExplainGroups,
     kExplainExamples},
    {"replay", "Call the parsers as a file says, call by call.",
     "The file has one JSON object per line, as parse --record writes it.", kReplayOperands,
     kReplayGroups, kReplayExamples},
    {"doctor",
     "Show what the program is made of and would load, and what is wrong with it.",
     "",
     {},
     kDoctorGroups,
     kDoctorExamples},
    {"new-bundle", "Write the template of a bundle that adds a parser.",
     "The template builds against an installed tree, and has a test that loads the bundle.",
     kNewBundleOperands, kNewBundleGroups, kNewBundleExamples},
    {"help", "Show the commands, or the options of one.", "", kHelpOperands, kHelpGroups,
     kHelpExamples},
};

constexpr Option kProgramOptions[] = {
    kHelp,
    {.letter = 'V', .name = "--version", .help = "Show the version."},
};
constexpr Example kProgramExamples[] = {
    {"tessera parse fit.py", "Show the document of a file."},
    {"tessera check damaged.py", "Say what is wrong with its markers."},
    {"tessera markers .", "List the markers of all files here and below."},
};
constexpr Meaning kStatuses[] = {
    {"0", "Everything is fine."},
    {"1", "check found something at or above --fail-on, and could read and parse all inputs."},
    {"2",
     "The command line, a bundle or the output cannot be used. Also without arguments, when the "
     "program "
     "only says how to begin."},
    {"3",
     "Some inputs could not be read or parsed, whatever check found in the others; everything else "
     "was written."},
    {"130", "The run was interrupted."},
};
constexpr Meaning kEnvironment[] = {
    {"NO_COLOR", "If set and not empty, text is not coloured unless --color always is given."},
    {"TERM", "If dumb, the same; and on a terminal, the progress of a run is not shown."},
    {"LC_ALL, LC_CTYPE, LANG",
     "The first one that is set says whether a tree on a terminal has Unicode signs: if its value "
     "contains UTF-8."},
    {"DISPLAY, WAYLAND_DISPLAY", "If neither is set, view opens no browser."},
    {"PATH", "Where view finds xdg-open, which opens the browser."},
    {"TMPDIR", "Where the page of parse --format html or view is stored until it is written."},
};

constexpr Program kProgram{
    "tessera",
    "Turns lines of source with comment markers into a structured document.",
    "Source files can carry markers in their comments: an anchor, a control that sets a value, the "
    "range of a line whose output is shown, a task that spans several lines. The parsers are a "
    "bundle of services; other bundles can add to them.",
    kProgramOptions,
    kCommands,
    kProgramExamples,
    kStatuses,
    kEnvironment,
};

}  // namespace

const Program& program() {
  return kProgram;
}

const Command* findCommand(std::string_view name) {
  const auto* const found = std::ranges::find(kCommands, name, &Command::name);
  return found == std::end(kCommands) ? nullptr : found;
}

const Option* findOption(const Command& command, std::string_view name) {
  for (const Group& group : command.groups) {
    const auto found = std::ranges::find(group.options, name, &Option::name);
    if (found != group.options.end()) return &*found;
  }
  return nullptr;
}

std::string_view defaultOf(const Option& option) {
  if (!option.fallback.empty() || option.choices.empty()) return option.fallback;
  return option.choices.front().name;
}

}  // namespace tessera::commandline
