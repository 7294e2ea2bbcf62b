#include "tessera/check/listing/MarkerFate.hpp"

#include <array>
#include <cstddef>

namespace tessera::check::listing {
namespace {

struct Texts {
  MarkerFate fate;
  std::string_view name;
  std::string_view phrase;
};

using enum MarkerFate;

constexpr std::array kTexts = std::to_array<Texts>({
    {kFailure, "failure", "failure"},
    {kText, "text", "stays in the text, because no parser accepts it"},
    {kTaskBegin, "task_begin", "begins a task"},
    {kTaskEnd, "task_end", "ends a task"},
    {kAnchor, "anchor", "sets an anchor"},
    {kUnsetAnchor, "unset_anchor", "sets no anchor"},
    {kNode, "node", "its text is a node"},
    {kHidden, "hidden", "its text belongs to later markers"},
    {kDropped, "dropped", "its text is left out, because no parser accepts it"},
    {kHandled, "handled", "owns no text"},
    {kIgnored, "ignored", "is not used, because only the first one of a line is"},
    {kEntry, "entry", "is an entry of the appendix"},
    {kDuplicateEntry, "duplicate_entry", "is a second entry, which is not used"},
    {kUnusedEntry, "unused_entry", "is an entry that no marker uses"},
});

constexpr bool isInOrder() {
  for (std::size_t i = 0; i < kTexts.size(); ++i) {
    if (kTexts[i].fate != MarkerFate(i)) return false;
  }
  return true;
}
static_assert(isInOrder());

}  // namespace

std::string_view nameOf(MarkerFate fate) noexcept {
  return kTexts[static_cast<std::size_t>(fate)].name;
}

std::string_view describe(MarkerFate fate) noexcept {
  return kTexts[static_cast<std::size_t>(fate)].phrase;
}

}  // namespace tessera::check::listing
