#include <array>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::check::catalogue {
namespace {

using enum DiagnosticKind;

constexpr std::array kMissingTaskMarkerPairMessages = std::to_array<std::string_view>(
    {"the task marker %1 has no partner: its id must be in exactly two task markers"});
constexpr std::array kOverlappingTaskMarkerMessages =
    std::to_array<std::string_view>({"the task marker %1 is inside another task"});
constexpr std::array kInvalidPositionDataMessages = std::to_array<std::string_view>(
    {"the range of the %1 marker %2 is empty, past the end of the line, or touches a marker"});
constexpr std::array kParserFailureMessages =
    std::to_array<std::string_view>({"a parser reports \"%2\" for the %1"});
constexpr std::array kDamagedMarkerMessages =
    std::to_array<std::string_view>({"this is not a marker: %1"});
constexpr std::array kTextInAppendixMessages =
    std::to_array<std::string_view>({"this line of the appendix contains no marker"});
constexpr std::array kTextBesideEntryMessages = std::to_array<std::string_view>(
    {"a line of the appendix contains one marker; only the first one is used"});
constexpr std::array kSecondAppendixLineMessages =
    std::to_array<std::string_view>({"a second line starts an appendix"});
constexpr std::array kDuplicateEntryMessages =
    std::to_array<std::string_view>({"a second appendix entry for %1; only the first one is used"});
constexpr std::array kUnusedEntryMessages =
    std::to_array<std::string_view>({"no marker in the code belongs to this entry: %1"});

constexpr std::array kCatalogue = std::to_array<CatalogueEntry>({
    {.kind = kMissingTaskMarkerPair,
     .id = "missing_task_marker_pair",
     .severity = Severity::kFailure,
     .title = "task marker without a partner",
     .messages = kMissingTaskMarkerPairMessages,
     .explanation =
         "A task begins at one task marker and ends at a second one with the same id. An id "
         "that only one marker has, or more than two, is not a pair, so there is no task.",
     .before = "# <@task#t1>\nx = 1\n",
     .after = "# <@task#t1>\nx = 1\n# <@task#t1>\n",
     .fix = ""},
    {.kind = kOverlappingTaskMarker,
     .id = "overlapping_task_marker",
     .severity = Severity::kFailure,
     .title = "task marker inside another task",
     .messages = kOverlappingTaskMarkerMessages,
     .explanation = "Tasks cannot be nested and cannot overlap.",
     .before = "# <@task#t1>\n# <@task#t2>\nx = 1\n# <@task#t1>\n# <@task#t2>\n",
     .after = "# <@task#t1>\nx = 1\n# <@task#t1>\n# <@task#t2>\n# <@task#t2>\n",
     .fix = ""},
    {.kind = kInvalidPositionData,
     .id = "invalid_position_data",
     .severity = Severity::kFailure,
     .title = "range that cannot be used",
     .messages = kInvalidPositionDataMessages,
     .explanation = "A range [begin, end) counts 16-bit code units of its line from 0.",
     .before = "x = 1  # <@output#o [4,4]>\n",
     .after = "x = 1  # <@output#o [4,5]>\n",
     .fix = ""},
    {.kind = kParserFailure,
     .id = "parser_failure",
     .severity = Severity::kFailure,
     .title = "failure reported by the parser of another bundle",
     .messages = kParserFailureMessages,
     .explanation = "A bundle that was started with --bundle recorded this failure.",
     .before = "",
     .after = "",
     .fix = ""},
    {.kind = kDamagedMarker,
     .id = "damaged_marker",
     .severity = Severity::kWarning,
     .title = "text that is almost a marker",
     .messages = kDamagedMarkerMessages,
     .explanation = "Text that breaks the marker syntax is not a marker.",
     .before = "# <@task#t1 {\"text\":}>\n",
     .after = "# <@task#t1 {\"text\":\"\"}>\n",
     .fix = ""},
    {.kind = kTextInAppendix,
     .id = "text_in_appendix",
     .severity = Severity::kWarning,
     .title = "line of the appendix without a marker",
     .messages = kTextInAppendixMessages,
     .explanation =
         "Each line after the one that starts the appendix contains one marker or is blank.",
     .before = "# <@appendix>\nx = 1\n",
     .after = "x = 1\n# <@appendix>\n",
     .fix = ""},
    {.kind = kTextBesideEntry,
     .id = "text_beside_entry",
     .severity = Severity::kWarning,
     .title = "more than one marker in a line of the appendix",
     .messages = kTextBesideEntryMessages,
     .explanation = "Each line of the appendix contains one marker.",
     .before = "# <@appendix>\n# <@task#a> # <@task#b>\n",
     .after = "# <@appendix>\n# <@task#a>\n# <@task#b>\n",
     .fix = ""},
    {.kind = kSecondAppendixLine,
     .id = "second_appendix_line",
     .severity = Severity::kWarning,
     .title = "second line that starts an appendix",
     .messages = kSecondAppendixLineMessages,
     .explanation = "A file has one appendix, which begins at the first such line.",
     .before = "# <@appendix>\n# <@task#a>\n# <@appendix>\n# <@task#b>\n",
     .after = "# <@appendix>\n# <@task#a>\n# <@task#b>\n",
     .fix = ""},
    {.kind = kDuplicateEntry,
     .id = "duplicate_entry",
     .severity = Severity::kWarning,
     .title = "second appendix entry of one marker",
     .messages = kDuplicateEntryMessages,
     .explanation = "Of several entries with the same element and id, the first one is used.",
     .before = "# <@appendix>\n# <@task#a {\"text\":\"x\"}>\n# <@task#a {\"text\":\"y\"}>\n",
     .after = "# <@appendix>\n# <@task#a {\"text\":\"x\"}>\n",
     .fix = ""},
    {.kind = kUnusedEntry,
     .id = "unused_entry",
     .severity = Severity::kWarning,
     .title = "appendix entry without a marker",
     .messages = kUnusedEntryMessages,
     .explanation = "No marker in the code has the element and id of this entry.",
     .before = "x = 1\n# <@appendix>\n# <@task#a>\n",
     .after = "x = 1\n",
     .fix = ""},
});

constexpr bool isInOrder() {
  for (std::size_t i = 0; i < kCatalogue.size(); ++i) {
    if (kCatalogue[i].kind != DiagnosticKind(i)) return false;
  }
  return true;
}
static_assert(isInOrder());

}  // namespace

std::span<const CatalogueEntry> catalogue() noexcept {
  return kCatalogue;
}

}  // namespace tessera::check::catalogue
