#pragma once

#include <array>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::check::catalogue {

/// The failures that the parsers record.
inline constexpr std::array kFailureEntries = std::to_array<CatalogueEntry>({
    {.kind = DiagnosticKind::kMissingTaskMarkerPair,
     .id = "missing_task_marker_pair",
     .severity = Severity::kFailure,
     .title = "task marker without a partner",
     .messages =
         {"the task marker %1 has no partner: no other task marker in the code has this id",
          "the id %1 is in %2 task markers, but a task has exactly two",
          "the task marker %1 has no partner; did you mean %2?",
          "the task marker %1 has no partner, because the other one is damaged",
          "the task marker %1 has no partner in the code: the other one is in the appendix",
          "the task marker %1 has no partner in this file: the other one is in another file",
          "the task marker %1 has no partner",
          "%2 task markers have no id, but a task has exactly two; an id begins with \"#\"%1"},
     .explanation =
         "A task is the lines from one task marker to a second one with the same id. Exactly two\n"
         "markers of the code must have that id; the appendix is not part of the code. Without a\n"
         "partner, or with more than one, there is no task, and its lines are ordinary code.\n"
         "\n"
         "Add the missing marker, correct its id, or remove the markers that are too many.",
     .before = "# <@task#fit>\n"
               "y = model.fit(x)\n"
               "# <@taks#fit>\n"
               "# <@appendix>\n"
               "# <@task#fit {\"text\":\"Fit\"}>\n",
     .after = "# <@task#fit>\n"
              "y = model.fit(x)\n"
              "# <@task#fit>\n"
              "# <@appendix>\n"
              "# <@task#fit {\"text\":\"Fit\"}>\n",
     .fix = "Corrects the other marker of the task if that one is damaged and the correction is\n"
            "certain."},
    {.kind = DiagnosticKind::kOverlappingTaskMarker,
     .id = "overlapping_task_marker",
     .severity = Severity::kFailure,
     .title = "task marker inside another task",
     .messages = {"the task %1 begins inside the task %2, which is still open",
                  "the task marker %1 is inside another task"},
     .explanation =
         "Tasks cannot contain or overlap each other. Between the two markers of a task, markers "
         "of\n"
         "other tasks are ignored, and an id that occurs there cannot begin a task later.\n"
         "\n"
         "Close the first task before the second one begins.",
     .before = "# <@task#load>\n"
               "rows = read()\n"
               "# <@task#plot>\n"
               "# <@task#load>\n"
               "draw(rows)\n"
               "# <@task#plot>\n"
               "# <@appendix>\n"
               "# <@task#load {\"text\":\"Load\"}>\n"
               "# <@task#plot {\"text\":\"Plot\"}>\n",
     .after = "# <@task#load>\n"
              "rows = read()\n"
              "# <@task#load>\n"
              "# <@task#plot>\n"
              "draw(rows)\n"
              "# <@task#plot>\n"
              "# <@appendix>\n"
              "# <@task#load {\"text\":\"Load\"}>\n"
              "# <@task#plot {\"text\":\"Plot\"}>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kInvalidPositionData,
     .id = "invalid_position_data",
     .severity = Severity::kFailure,
     .title = "range that cannot be used",
     .messages =
         {"the range %1 ends before it begins",
          "the range %1 is empty: the second number is the position after the last character",
          "the range %1 ends past the end of the line, which has %2",
          "the range %1 reaches into its own marker, which begins at position %2",
          "the range %1 touches another marker", "the range of the %1 marker %2 cannot be used"},
     .explanation = "A range [begin,end] selects text of its own line. Positions are counted from "
                    "0 in 16-bit code\n"
                    "units: most characters are one unit, emoji and other characters beyond U+FFFF "
                    "are two. The\n"
                    "text begins at \"begin\" and ends before \"end\". It must not be empty, must "
                    "lie within the line,\n"
                    "and must not touch the text of any marker; it may end where a marker begins, "
                    "but not begin\n"
                    "where one ends.\n"
                    "\n"
                    "The marker keeps its id and data, but its text stays ordinary text.",
     .before = "total = 1  # <@output#total [0,50]>\n",
     .after = "total = 1  # <@output#total [0,5]>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kParserFailure,
     .id = "parser_failure",
     .severity = Severity::kFailure,
     .title = "failure reported by another bundle",
     .messages = {"a parser reports \"%2\" for the %1"},
     .explanation =
         "A parser of a bundle that was added to the program with --bundle recorded this "
         "failure in the\n"
         "document. The documentation of that bundle says what it means. In the "
         "example, the bundle\n"
         "wants a number as the minimum of a slider.",
     .before = "speed = 3  # <@control:slider#speed [8,9] {\"min\":\"low\"}>\n",
     .after = "speed = 3  # <@control:slider#speed [8,9] {\"min\":1}>\n",
     .fix = "",
     .exampleOptions = "--bundle FILE"},
});

}  // namespace tessera::check::catalogue
