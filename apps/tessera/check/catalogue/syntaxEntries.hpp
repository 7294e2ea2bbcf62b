#pragma once

#include <array>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::check::catalogue {

/// Text that is almost a marker, and a marker that is perhaps not meant as one.
inline constexpr std::array kSyntaxEntries = std::to_array<CatalogueEntry>({
    {.kind = DiagnosticKind::kUnknownElement,
     .id = "unknown_element",
     .severity = Severity::kWarning,
     .title = "element that does not exist",
     .messages = {"%1 is not an element; did you mean %2?",
                  "%1 is not an element, because elements are lower case; did you mean %2?",
                  "%1 is not an element; the elements are control, output, task and text"},
     .explanation = "The word after \"<@\" is the element: control, output, task or text, in lower "
                    "case. Text with\n"
                    "any other word there is not a marker, and stays in the document.",
     .before = "y = 2  # <@outputs#y [0,1]>\n",
     .after = "y = 2  # <@output#y [0,1]>\n",
     .fix = "Replaces the word by the element that it resembles, or puts the \"#\" or \":\" after "
            "the element."},
    {.kind = DiagnosticKind::kMissingElement,
     .id = "missing_element",
     .severity = Severity::kWarning,
     .title = "marker without an element",
     .messages =
         {"there is a blank between \"<@\" and the element %1",
          "the element is missing after \"<@\"; the elements are control, output, task and text"},
     .explanation = "The element follows \"<@\" directly. Without it, the text is not a marker.",
     .before = "# <@ text:anchor#results>\n",
     .after = "# <@text:anchor#results>\n",
     .fix = "Removes the blank before the element."},
    {.kind = DiagnosticKind::kIncompleteOpening,
     .id = "incomplete_opening",
     .severity = Severity::kWarning,
     .title = "marker that lacks a character of \"<@\"",
     .messages = {"%1 is missing here: a marker begins with \"<@\"",
                  "a marker begins with \"<@\", not with %1"},
     .explanation = "A marker begins with the two characters \"<@\". To write a marker that is "
                    "deliberately not\n"
                    "used, put any character between the two.",
     .before = "# <text:anchor#results>\n",
     .after = "# <@text:anchor#results>\n",
     .fix = "Inserts the missing character."},
    {.kind = DiagnosticKind::kMissingType,
     .id = "missing_type",
     .severity = Severity::kWarning,
     .title = "marker with \":\" but without a type",
     .messages = {"the type is missing after \":\""},
     .explanation = "After \":\" follows the type of the marker, as in \"text:anchor\". A marker "
                    "without a type has\n"
                    "no \":\" either.",
     .before = "# <@text:\nanchor#results>\n",
     .after = "# <@text:anchor#results>\n",
     .fix = "Joins the line and the next one where a line break is in the marker."},
    {.kind = DiagnosticKind::kInvalidId,
     .id = "invalid_id",
     .severity = Severity::kWarning,
     .title = "id that is not well-formed",
     .messages = {"the id is missing after \"#\"", "the quoted id is not a JSON string: %1",
                  "an id with %1 in it needs quotes: write #%2",
                  "there is a blank before the \"#\" of the id",
                  "a quoted id is in double quotes, not in single ones"},
     .explanation = "An id consists of letters, digits, \"_\", \"-\", \".\" and characters beyond "
                    "ASCII. Any other id is\n"
                    "written as a JSON string, in double quotes.",
     .before = "# <@text:anchor#\"first results>\n",
     .after = "# <@text:anchor#\"first results\">\n",
     .fix = "Inserts a missing quote, removes a blank before \"#\", or joins the line and the next "
            "one where a line break is in the "
            "marker,\nif only one such change makes a marker."},
    {.kind = DiagnosticKind::kInvalidRange,
     .id = "invalid_range",
     .severity = Severity::kWarning,
     .title = "range that is not well-formed",
     .messages = {"a range cannot have a sign: expected a whole number, found %1",
                  "expected a whole number in the range, found %1",
                  "a range has two numbers, [begin,end]",
                  "expected \",\" between the two numbers of the range, found %1",
                  "expected \"]\" at the end of the range, found %1",
                  "expected \"[\" at the start of the range, found %1",
                  "the range must come before the data"},
     .explanation = "A range is two whole numbers in brackets, [begin,end]. It follows the id "
                    "after a blank, and\n"
                    "precedes the data.",
     .before = "y = 2  # <@output#y [0,1}>\n",
     .after = "y = 2  # <@output#y [0,1]>\n",
     .fix = "Corrects a bracket or comma where only one correction makes a marker."},
    {.kind = DiagnosticKind::kInvalidData,
     .id = "invalid_data",
     .severity = Severity::kWarning,
     .title = "data that is not a JSON object",
     .messages = {"the data is not a JSON object: expected %1, found %2",
                  "the data is not a JSON object: %1 is not an escape in a string",
                  "the data is not a JSON object: %1 before its end",
                  "expected \"{\" at the start of the data, found %1",
                  "the data is not a JSON object: %1 in a string must be written as an escape"},
     .explanation = "The data of a marker is a JSON object on the same line: keys and texts in "
                    "double quotes,\n"
                    "members separated by commas, no comma after the last one, and true, false and "
                    "null in lower\n"
                    "case.",
     .before = "y = 2  # <@output#y [0,1] {\"format\":\"short\"]>\n",
     .after = "y = 2  # <@output#y [0,1] {\"format\":\"short\"}>\n",
     .fix = "Corrects one character where only one correction makes a marker."},
    {.kind = DiagnosticKind::kMarkerLimit,
     .id = "marker_limit",
     .severity = Severity::kWarning,
     .title = "data beyond a limit",
     .messages = {"the data is nested deeper than 64 levels",
                  "the number %1 is larger than the largest double"},
     .explanation = "The data of a marker can be nested 64 levels deep, and its numbers cannot be "
                    "larger than\n"
                    "about 1.8e308. Data beyond that makes the text no marker.",
     .before = "y = 2  # <@output#y [0,1] {\"limit\":1e400}>\n",
     .after = "y = 2  # <@output#y [0,1] {\"limit\":1e300}>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kMissingBlank,
     .id = "missing_blank",
     .severity = Severity::kWarning,
     .title = "range or data without a blank before it",
     .messages = {"a blank is missing before the %1"},
     .explanation = "The range and the data of a marker each follow a blank.",
     .before = "y = 2  # <@output#y[0,1]>\n",
     .after = "y = 2  # <@output#y [0,1]>\n",
     .fix = "Inserts the blank."},
    {.kind = DiagnosticKind::kUnclosedMarker,
     .id = "unclosed_marker",
     .severity = Severity::kWarning,
     .title = "marker without its \">\"",
     .messages = {"the marker has no \">\" at its end",
                  "expected \">\" at the end of the marker, found %1",
                  "the line ends inside the marker, after %1",
                  "expected \">\" at the end of the marker, found %1; %2 begins with %3"},
     .explanation = "A marker ends with \">\" on the line on which it begins.",
     .before = "# <@text:anchor#results\n",
     .after = "# <@text:anchor#results>\n",
     .fix = "Inserts the \">\" at the end of the line."},
    {.kind = DiagnosticKind::kMissingLeader,
     .id = "missing_leader",
     .severity = Severity::kWarning,
     .title = "marker that is not in a comment",
     .messages =
         {"there is no comment leader before this marker: write one, such as \"#\" or \"//\"",
          "%1 is not a comment leader: use %2",
          "each marker of a line needs its own comment leader, also after another marker",
          "there must be a blank between %1 and the marker",
          "%1 alone does not begin a comment: this marker needs a leader, such as \"#\" or \"//\"",
          "only blanks may be between a comment leader and its marker, not %1"},
     .explanation = "A marker is a comment: directly before \"<@\", apart from blanks, there must "
                    "be \"#\", \"%\", \";\",\n"
                    "\"!\", \"//\", \"--\" or REM, or the start of a block comment. The \"*\" that "
                    "continues a block\n"
                    "comment on the next line is none. Every marker needs its own leader, also the "
                    "second one of a line.",
     .before = "y = 2  # <@output#y [0,1]> <@text:anchor#end>\n",
     .after = "y = 2  # <@output#y [0,1]> # <@text:anchor#end>\n",
     .fix = "Completes a leader that is too short, writes REM in upper case, or repeats the "
            "leader before it. A \"-\" or \"/\" before a blank stays, because it may be a list "
            "item or a division."},
    {.kind = DiagnosticKind::kUnclosedComment,
     .id = "unclosed_comment",
     .severity = Severity::kWarning,
     .title = "block comment that does not end right after its marker",
     .messages = {"the block comment must end after the marker, on the same line: %1 is missing",
                  "the block comment must end right after the marker: expected %1, found %2",
                  "%1 ends a block comment, but %2 does not begin one before this marker"},
     .explanation = "A marker in a block comment is alone in it: the end of the comment follows "
                    "the \">\" directly,\n"
                    "apart from blanks.",
     .before = "/* <@text:anchor#results> the results */\n",
     .after = "/* <@text:anchor#results> */ /* the results */\n",
     .fix = "Adds or corrects the end of the comment if no later line closes it. Text between the "
            "marker and\nthe end of the comment becomes a separate comment."},
    {.kind = DiagnosticKind::kInvalidAppendixLine,
     .id = "invalid_appendix_line",
     .severity = Severity::kWarning,
     .title = "line that almost starts an appendix",
     .messages = {"this line does not start the appendix: it must contain nothing but "
                  "\"<@appendix>\" in a comment"},
     .explanation = "The appendix starts at a line with nothing but \"<@appendix>\" in a comment. "
                    "With other text on\n"
                    "that line, the entries after it are part of the code.",
     .before = "x = 1\n# <@appendix> settings\n",
     .after = "x = 1\n# <@appendix>\n",
     .fix = ""},
    {.kind = DiagnosticKind::kTextAfterMarker,
     .id = "text_after_marker",
     .severity = Severity::kWarning,
     .title = "text directly after a marker",
     .messages = {"the marker has ended before %1: text after a marker needs a blank before it"},
     .explanation = "A marker ends at its first \">\" outside of quotes. A word or a second \">\" "
                    "directly after it was "
                    "probably meant to be inside.",
     .before = "# <@text:anchor#overview>>\n",
     .after = "# <@text:anchor#overview>\n",
     .fix = "Removes a second \">\"."},
    {.kind = DiagnosticKind::kMarkerInString,
     .id = "marker_in_string",
     .severity = Severity::kWarning,
     .title = "marker inside a string",
     .messages = {"this marker is inside a string, but it is used: to prevent that, put a "
                  "character between \"<\" and \"@\""},
     .explanation =
         "The scanner does not know the languages of the files: it takes a marker "
         "inside a string for a\n"
         "marker. To write a marker that is not used, put a character between \"<\" and "
         "\"@\", for\n"
         "example as two strings that are joined.\n"
         "\n"
         "This is found where the extension of the file tells the language and its "
         "strings are certain:\n"
         "C, C++, C#, CSS, Dart, Go, Haskell, Java, JSON, Kotlin, Lua, PHP, Python, Rust, "
         "Scala, Swift\n"
         "and TOML.",
     .before = "print(\"# <@text:anchor#results>\")\n",
     .after = "print(\"# <\" \"@text:anchor#results>\")\n",
     .fix = ""},
});

}  // namespace tessera::check::catalogue
