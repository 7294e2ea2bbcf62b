#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/textOf.hpp"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "quenlith/syntax/markers.hpp"
#include "tessera/source/SourceText.hpp"
#include "tessera/source/readAppendix.hpp"

namespace quenlith::fuzz {

using fl::i18n::ustring;
using shared::appendix::MarkerAppendix;
using syntax::Marker;

namespace {

bool haveEqualKeys(const Marker& left, const Marker& right) {
  return left.getElement() == right.getElement() && left.getId() == right.getId();
}

// The first marker of each line; of those with equal keys the first.
std::vector<Marker> readEntries(std::u16string_view text) {
  std::vector<Marker> entries;
  while (!text.empty()) {
    const std::u16string_view line = text.substr(0, text.find(u'\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const auto markers = syntax::get_markers_from_snippet(ustring(line), false);
    if (markers.empty()) continue;
    const Marker& marker = markers.front().marker;
    const bool isKnown = std::ranges::any_of(
        entries, [&](const Marker& entry) { return haveEqualKeys(entry, marker); });
    if (!isKnown) entries.push_back(marker);
  }
  return entries;
}

void checkEntries(const MarkerAppendix& appendix, const std::vector<Marker>& entries,
                  const Marker& missing) {
  for (const Marker& entry : entries) {
    const auto found = appendix.findEntry(entry);
    require(found.marker && *found.marker == entry && found.text == entry.toString(),
            "each entry is found by its element and id");
  }
  const auto found = appendix.findEntry(missing);
  require(!found.marker && found.text.empty(), "no other entry is found");
}

}  // namespace

void checkAppendix(std::string_view input) {
  const ustring text = textOf(input);
  const ustring code = u"x = 1\n";
  const auto source = tessera::source::splitSource(code + u"# <@appendix>\n" + text);
  require(source.appendixLine == 2, "the first appendix line counts");
  const std::vector<Marker> entries = readEntries(text);
  require(tessera::source::readAppendix(source) == entries, "the entries are those of the lines");
  // Its id is longer than any id of the text.
  const Marker missing(u"%<@task#" + ustring(text.size() + 1, u'x') + u'>');
  MarkerAppendix appendix;
  for (const Marker& entry : entries) {
    appendix.addEntry(entry);
    appendix.addEntry(entry);
  }
  checkEntries(appendix, entries, missing);
  const auto again = tessera::source::splitSource(code + appendix.build());
  require(tessera::source::readAppendix(again) == entries, "an appendix that is written is read");
  MarkerAppendix replaced;
  replaced.addEntry(missing);
  replaced.replace(entries);
  checkEntries(replaced, entries, missing);
}

}  // namespace quenlith::fuzz
