#pragma once

#include <array>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::check::catalogue {

/// Markers that do not do what their author expects.
inline constexpr std::array kMarkerEntries = std::to_array<CatalogueEntry>({
    {.kind = DiagnosticKind::kSplitCharacter,
     .id = "split_character",
     .severity = Severity::kWarning,
     .title = "range that cuts a character",
     .messages = {"the range %1 cuts %2 in two: this character takes the positions %3 and %4; did "
                  "you mean %5?",
                  "the range %1 cuts %2 in two: readers see the text from position %3 to %4 as one "
                  "character; did you mean %5?"},
     .explanation = "Positions count 16-bit code units. Emoji and other characters beyond U+FFFF "
                    "take two, and what a\n"
                    "reader sees as one character may be a base with combining marks or several "
                    "joined emoji.\n"
                    "Half a character is shown as a replacement character, or as a different one.",
     .before = "s = \"\xF0\x9F\x8F\x86\"  # <@output#s [5,6]>\n",
     .after = "s = \"\xF0\x9F\x8F\x86\"  # <@output#s [5,7]>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kBlankRange,
     .id = "blank_range",
     .severity = Severity::kWarning,
     .title = "range that contains only blanks",
     .messages = {"the range %1 selects only blanks"},
     .explanation = "The range selects blanks only. Often the line was indented or edited after "
                    "the range was written.",
     .before = "y = 2    # <@output#y [6,8]>\n",
     .after = "y = 2    # <@output#y [0,1]>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kHiddenRange,
     .id = "hidden_range",
     .severity = Severity::kWarning,
     .title = "range that a later range hides",
     .messages = {"nothing is left of the range %1: the later range %2 covers it",
                  "the range %1 loses %3, because the later range %2 overlaps it",
                  "nothing is left of the range %1: later ranges cover it"},
     .explanation = "Where the ranges of a line overlap, the later marker gets the text. A range "
                    "may contain a later\n"
                    "one, but what the later one covers is lost for the first.",
     .before = "f(x, y)  # <@output#a [2,3]> # <@output#b [0,7]>\n",
     .after = "f(x, y)  # <@output#b [0,7]> # <@output#a [2,3]>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kDroppedText,
     .id = "dropped_text",
     .severity = Severity::kWarning,
     .title = "range whose text is left out of the document",
     .messages = {"the document loses %2: no parser takes the range %1 of this %3 marker"},
     .explanation = "The text of a range is passed to the parser of its marker. Without a parser, "
                    "the text is left out\n"
                    "of the document. Task and text markers have none, so they should have no "
                    "range; for output and\n"
                    "control markers the program has one unless --bare is given.",
     .before = "x = 1  # <@text:anchor#start [0,1]>\n",
     .after = "x = 1  # <@text:anchor#start>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kUnknownType,
     .id = "unknown_type",
     .severity = Severity::kWarning,
     .title = "text marker that is not an anchor",
     .messages = {"%1 is not a type of text marker; did you mean %2?",
                  "a text marker without a type does nothing; did you mean \"text:anchor\"?",
                  "%1 is not a type of text marker; the only one is \"anchor\""},
     .explanation = "The only text markers that do something are anchors, \"text:anchor\". Any "
                    "other one is ignored and\n"
                    "stays in the text of its line, unless a bundle has a parser for it.",
     .before = "# <@text:ancor#results>\n",
     .after = "# <@text:anchor#results>\n",
     .fix = "Replaces a misspelt \"anchor\", or puts the \"#\" before its id."},
    {.kind = DiagnosticKind::kUnhandledMarker,
     .id = "unhandled_marker",
     .severity = Severity::kWarning,
     .title = "marker that no parser handles",
     .messages = {"no parser handles this %1 marker: its own text stays in the document"},
     .explanation =
         "A control marker needs a parser of a bundle. The program has one unless --bare "
         "is given.\n"
         "Without a parser, the marker is ordinary text of its line.\n"
         "\n"
         "Leave out --bare, add a bundle that has a parser for the marker with "
         "--bundle, or remove the\n"
         "marker.",
     .before = "width = 12  # <@control:slider#width [8,10]>\n",
     .after = "width = 12\n",
     .fix = "",
     .exampleOptions = "--bare"},
    {.kind = DiagnosticKind::kAnchorWithoutId,
     .id = "anchor_without_id",
     .severity = Severity::kWarning,
     .title = "anchor without an id",
     .messages = {"this anchor has no id, so it is not set"},
     .explanation = "An anchor gives its id to its line. Without an id it does nothing.",
     .before = "# <@text:anchor>\n",
     .after = "# <@text:anchor#results>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kAnchorNotSet,
     .id = "anchor_not_set",
     .severity = Severity::kWarning,
     .title = "anchor that has no effect",
     .messages = {"the anchor %1 is not set, because a task marker is on its line",
                  "the anchor %1 is not set: %2 is on the same line, which can have only one"},
     .explanation = "A line has one anchor. Of several on a line, the last one is set. On the line "
                    "that opens a task,\n"
                    "the first one becomes the anchor of the task; on any other line with a task "
                    "marker none is set.",
     .before = "# <@text:anchor#one> # <@text:anchor#two>\n",
     .after = "# <@text:anchor#one>\n# <@text:anchor#two>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kDuplicateAnchor,
     .id = "duplicate_anchor",
     .severity = Severity::kWarning,
     .title = "several anchors with one id",
     .messages = {"the anchor %1 is already set on line %2"},
     .explanation = "The id of an anchor should be unique in its file: a reference to it finds "
                    "only one of them.",
     .before = "# <@text:anchor#results>\nx = 1\n# <@text:anchor#results>\n",
     .after = "# <@text:anchor#results>\nx = 1\n# <@text:anchor#more-results>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kIgnoredTaskMarker,
     .id = "ignored_task_marker",
     .severity = Severity::kWarning,
     .title = "second task marker on a line",
     .messages = {"this task marker %1 is ignored: only the first task marker of a line is used"},
     .explanation = "A line begins or ends one task: the first task marker of the line decides. A "
                    "second one is ignored,\n"
                    "so its task may not begin, or may never end. Only two equal markers on one "
                    "line make a task of\n"
                    "that line.",
     .before = "# <@task#a>\nx = 1\n# <@task#a> # <@task#b>\ny = 2\n# <@task#b>\n"
               "# <@appendix>\n# <@task#a {\"text\":\"A\"}>\n# <@task#b {\"text\":\"B\"}>\n",
     .after = "# <@task#a>\nx = 1\n# <@task#a>\n# <@task#b>\ny = 2\n# <@task#b>\n"
              "# <@appendix>\n# <@task#a {\"text\":\"A\"}>\n# <@task#b {\"text\":\"B\"}>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kEscapedTaskMarker,
     .id = "escaped_task_marker",
     .severity = Severity::kWarning,
     .title = "task marker with a backslash after \"%%\"",
     .messages =
         {"no task begins or ends at the task marker %1, because a backslash is before it",
          "the backslash in the task marker %1 counts only where tasks are looked for: elsewhere, "
          "\"%%\\\" is read as \"%%\""},
     .explanation =
         "In a line of code, \"%%\\\" is read as \"%%\", so that anchors, outputs and controls "
         "after it have an\n"
         "effect. Tasks are looked for before that: the backslash separates a task marker from its "
         "leader,\n"
         "so there is no task, but the marker is left out of the document.",
     .before = "%%\\ <@task#fit>\ny = model.fit(x)\n%%\\ <@task#fit>\n"
               "%% <@appendix>\n%% <@task#fit {\"text\":\"Fit\"}>\n",
     .after = "%% <@task#fit>\ny = model.fit(x)\n%% <@task#fit>\n"
              "%% <@appendix>\n%% <@task#fit {\"text\":\"Fit\"}>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kEmptyTask,
     .id = "empty_task",
     .severity = Severity::kWarning,
     .title = "task that contains no code",
     .messages =
         {"the task %1 contains no code",
          "the task %1 contains no line: the text after its markers is left out of the document"},
     .explanation =
         "There is nothing but blanks between the two markers of the task and beside them. If both "
         "markers\n"
         "are at the very start of one line, the rest of that line is left out of the document.",
     .before = "# <@task#fit>\n# <@task#fit>\n"
               "# <@appendix>\n# <@task#fit {\"text\":\"Fit\"}>\n",
     .after = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
              "# <@appendix>\n# <@task#fit {\"text\":\"Fit\"}>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kTaskTooLong,
     .id = "task_too_long",
     .severity = Severity::kWarning,
     .title = "task of more than 65,535 lines",
     .messages = {"the task %1 ends after 65,535 lines: its last marker is on line %2"},
     .explanation = "The lines of a task are counted in 16 bits. At line 65,536 the parser takes "
                    "the task for closed, and\n"
                    "the document does not say how many lines it has. Split the task.",
     .before = "# <@task#fit>\nstep()  # and 65,534 lines more\n# <@task#fit>\n"
               "# <@appendix>\n# <@task#fit {\"text\":\"Fit\"}>\n",
     .after = "# <@task#fit-1>\nstep()  # and 32,766 lines more\n# <@task#fit-1>\n"
              "# <@task#fit-2>\nstep()  # and 32,766 lines more\n# <@task#fit-2>\n"
              "# <@appendix>\n# <@task#fit-1 {\"text\":\"Fit 1\"}>\n# <@task#fit-2 {\"text\":\"Fit "
              "2\"}>\n",
     .fix = ""},
});

}  // namespace tessera::check::catalogue
