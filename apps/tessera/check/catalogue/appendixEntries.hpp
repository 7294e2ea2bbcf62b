#pragma once

#include <array>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::check::catalogue {

/// The appendix of a file.
inline constexpr std::array kAppendixEntries = std::to_array<CatalogueEntry>({
    {.kind = DiagnosticKind::kMissingEntry,
     .id = "missing_entry",
     .severity = Severity::kWarning,
     .title = "task without settings",
     .messages = {"the task %1 has no entry in the appendix, so all its settings are empty"},
     .explanation = "The settings of a task are in the appendix of the file, in the entry with the "
                    "id of the task.\n"
                    "Without an entry the task has no text, no class and no state.",
     .before = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n",
     .after = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
              "# <@appendix>\n# <@task#fit {\"text\":\"Fit\"}>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kUnusedEntry,
     .id = "unused_entry",
     .severity = Severity::kWarning,
     .title = "appendix entry without a marker",
     .messages = {"the code has no %1; did you mean the %2?",
                  "the code has no %1, so this entry is not used"},
     .explanation = "An entry of the appendix belongs to the marker in the code with the same "
                    "element and id. There is\n"
                    "none, so the entry is not used.",
     .before =
         "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
         "# <@appendix>\n# <@task#fit {\"text\":\"Fit\"}>\n# <@task#plot {\"text\":\"Plot\"}>\n",
     .after = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
              "# <@appendix>\n# <@task#fit {\"text\":\"Fit\"}>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kDuplicateEntry,
     .id = "duplicate_entry",
     .severity = Severity::kWarning,
     .title = "second appendix entry of one marker",
     .messages = {"this is a second entry for the %1; only the first one is used"},
     .explanation = "Of several entries with the same element and id, the first one is used.",
     .before =
         "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
         "# <@appendix>\n# <@task#fit {\"text\":\"Fit\"}>\n# <@task#fit {\"text\":\"Fit\"}>\n",
     .after = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
              "# <@appendix>\n# <@task#fit {\"text\":\"Fit\"}>\n",
     .fix = "Removes the line of the second entry if both entries are equal."},
    {.kind = DiagnosticKind::kUnknownSetting,
     .id = "unknown_setting",
     .severity = Severity::kWarning,
     .title = "setting of a task that is not known",
     .messages = {"%1 is not a setting of a task; did you mean %2?",
                  "%1 is not a setting of a task"},
     .explanation = "A task has the settings taskClassDefFile, uniqueId, text, run, autorun, "
                    "collapsed, outputs,\n"
                    "variablesMap, appState and view. Any other key is ignored.",
     .before = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
               "# <@appendix>\n# <@task#fit {\"txt\":\"Fit\"}>\n",
     .after = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
              "# <@appendix>\n# <@task#fit {\"text\":\"Fit\"}>\n",
     .fix = "Replaces the key by the setting that it resembles, unless the entry has that setting "
            "too."},
    {.kind = DiagnosticKind::kSettingNotText,
     .id = "setting_not_text",
     .severity = Severity::kWarning,
     .title = "setting that is not text",
     .messages = {"the setting %1 must be text in quotes; %2 is ignored"},
     .explanation = "All settings of a task are texts, also numbers and truth values. Any other "
                    "value is ignored, and\n"
                    "the setting is empty.",
     .before = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
               "# <@appendix>\n# <@task#fit {\"text\":\"Fit\",\"collapsed\":true}>\n",
     .after = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
              "# <@appendix>\n# <@task#fit {\"text\":\"Fit\",\"collapsed\":\"true\"}>\n",
     .fix = "Puts a number, true or false in quotes."},
    {.kind = DiagnosticKind::kDuplicateSetting,
     .id = "duplicate_setting",
     .severity = Severity::kWarning,
     .title = "setting that occurs twice",
     .messages = {"the setting %1 occurs twice; only the last one is used"},
     .explanation = "Of two equal keys in the data of a marker, the last one counts.",
     .before = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
               "# <@appendix>\n# <@task#fit {\"text\":\"Fit\",\"text\":\"Plot\"}>\n",
     .after = "# <@task#fit>\ny = model.fit(x)\n# <@task#fit>\n"
              "# <@appendix>\n# <@task#fit {\"text\":\"Plot\"}>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kTextBesideEntry,
     .id = "text_beside_entry",
     .severity = Severity::kWarning,
     .title = "text beside an appendix entry",
     .messages = {"the text before this entry is ignored", "the text after this entry is ignored",
                  "the entry ends before %1, and the text after it is ignored",
                  "this marker is ignored: a line of the appendix has one entry"},
     .explanation = "Each line of the appendix contains one marker, and nothing else.",
     .before = "# <@task#a>\nx = 1\n# <@task#a>\n# <@appendix>\n# <@task#a {\"text\":\"A\"}>>\n",
     .after = "# <@task#a>\nx = 1\n# <@task#a>\n# <@appendix>\n# <@task#a {\"text\":\"A\"}>\n",
     .fix = "Removes a second \">\"."},
    {.kind = DiagnosticKind::kTextInAppendix,
     .id = "text_in_appendix",
     .severity = Severity::kWarning,
     .title = "line of the appendix without an entry",
     .messages = {"this line is in the appendix, but contains no entry",
                  "these %1 lines are in the appendix, but contain no entry"},
     .explanation = "Each line after the one that starts the appendix contains one marker or is "
                    "blank. Everything else\n"
                    "there is ignored: code after the appendix is not part of the document.",
     .before = "# <@appendix>\nx = 1\n",
     .after = "x = 1\n# <@appendix>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kSecondAppendixLine,
     .id = "second_appendix_line",
     .severity = Severity::kWarning,
     .title = "second line that starts an appendix",
     .messages = {"the appendix has already started on line %1"},
     .explanation = "A file has one appendix, from the first line that starts one to the end of "
                    "the file. A second such\n"
                    "line does nothing.",
     .before = "x = 1\n# <@appendix>\n# <@appendix>\n",
     .after = "x = 1\n# <@appendix>\n",
     .fix = "Removes the second line."},
});

}  // namespace tessera::check::catalogue
