#include "tessera/check/suspects/findEscapedTasks.hpp"

#include <string_view>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::check::suspects {

using namespace scan;

namespace {

using namespace catalogue::forms;

Suspect describe(const FoundMarker& marker, EscapedTaskMarker form) {
  Suspect suspect;
  suspect.diagnostic = catalogue::makeDiagnostic(catalogue::DiagnosticKind::kEscapedTaskMarker,
                                                 form, marker.span(), {nameOf(marker)});
  suspect.element = marker.parts.element;
  if (form == kEscapeBeforeTask) {
    suspect.ids.push_back(marker.id);
  } else {
    suspect.takenId = marker.id;
  }
  return suspect;
}

}  // namespace

void findEscapedTasks(const FileScan& scan, std::vector<Suspect>& suspects) {
  hashing::KeyedMap<std::u16string_view, std::size_t> byId;
  for (const FoundMarker& marker : scan.code) {
    if (marker.isOnAmbiguousLine && marker.isTask() &&
        marker.text().find(u"%%\\") != std::u16string_view::npos) {
      suspects.push_back(describe(marker, kEscapeInTask));
    }
    if (!marker.isEscapedTask) continue;
    const auto [known, isNew] = byId.emplace(marker.id, suspects.size());
    if (isNew) {
      suspects.push_back(describe(marker, kEscapeBeforeTask));
    } else {
      suspects[known->second].diagnostic.notes.push_back({marker.span(), "this one, too"});
    }
  }
}

}  // namespace tessera::check::suspects
