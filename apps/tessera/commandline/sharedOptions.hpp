#pragma once

#include "tessera/commandline/Command.hpp"

namespace tessera::commandline {

// The options that several commands have.

inline constexpr Option kHelp{.letter = 'h', .name = "--help", .help = "Show this help."};
inline constexpr Option kHelpOnly[] = {kHelp};
inline constexpr Group kGeneral{"General", kHelpOnly};

inline constexpr Option kBundle{.name = "--bundle",
                                .value = "FILE",
                                .help = "Start a bundle with more parsers.",
                                .completion = Completion::kFiles,
                                .isRepeatable = true};
inline constexpr Option kBare{
    .name = "--bare",
    .help =
        "Make no nodes for output and control markers, as the parsers without other bundles: the "
        "text of an output is left out, and the marker of a control stays in its line."};
inline constexpr Option kBundleOptions[] = {kBundle, kBare};
inline constexpr Group kBundles{"Bundles", kBundleOptions};
inline constexpr Option kBundleOnly[] = {kBundle};
inline constexpr Group kBundlesAlone{"Bundles", kBundleOnly};

inline constexpr Option kInputOptions[] = {
    {.name = "--files-from",
     .value = "FILE",
     .help = "Read more paths from a file, one per line; - is standard input.",
     .completion = Completion::kFiles},
    {.letter = '0',
     .name = "--null",
     .help = "Paths in that file end in NUL, not in a line feed.",
     .needs = "--files-from"},
    {.name = "--glob",
     .value = "GLOB",
     .help = "Of directories, take files that match (as in .gitignore); \"!GLOB\" leaves files "
             "out.",
     .isRepeatable = true},
    {.name = "--no-ignore", .help = "Of directories, also take files that .gitignore excludes."},
    {.name = "--shard", .value = "I/N", .help = "Take every N-th file, from the I-th on."},
};
inline constexpr Group kInput{"Files", kInputOptions};

inline constexpr Choice kProgressChoices[] = {
    {"always", "on standard error, whatever that is"},
    {"never", "not at all"},
};
inline constexpr Option kRunOptions[] = {
    {.letter = 'j',
     .name = "--jobs",
     .value = "N",
     .help = "The number of worker processes, 1 to 1024.",
     .fallback = "the number of processor cores"},
    {.name = "--timeout",
     .value = "SECONDS",
     .help = "Give up a file after that time, for example 30 or 0.5. Not with parse --record and "
             "check --fix.",
     .fallback = "no limit"},
    {.name = "--progress",
     .value = "WHEN",
     .help = "Whether to show how far the run is.",
     .choices = kProgressChoices,
     .noun = "a way to show progress",
     .fallback = "on a terminal only"},
    {.letter = 'o',
     .name = "--output",
     .value = "FILE",
     .help = "Write to a file, which appears when it is complete.",
     .fallback = "standard output",
     .completion = Completion::kFiles},
    {.name = "--resume",
     .help = "Continue what an interrupted run has written to FILE.partial. Only for a format with "
             "one record per file: ndjson of parse, json of check and markers.",
     .needs = "--output"},
};
inline constexpr Group kRun{"Run and output", kRunOptions};

inline constexpr Operand kWatchedPaths[] = {
    {.name = "PATH",
     .help = "A file, or a directory with all that is below.",
     .isRequired = true,
     .isRepeatable = true,
     .substitute = "--files-from"},
};

inline constexpr Operand kPaths[] = {
    {.name = "PATH",
     .help = "A file, a directory with all that is below, or - for standard input.",
     .isRequired = true,
     .isRepeatable = true,
     .substitute = "--files-from"},
};

}  // namespace tessera::commandline
