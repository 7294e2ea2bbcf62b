#include "tessera/check/rules/dropUncertainFixes.hpp"

#include <string>

#include "tessera/check/rules/settings.hpp"
#include "tessera/check/scan/FoundMarker.hpp"
#include "tessera/check/scan/KeyedMap.hpp"

namespace tessera::check::rules {

using namespace scan;

namespace {

using suspects::Suspect;

/// Calls `isConfirmed` with the marker that the fix of each suspect makes.
template <class Predicate>
void keepConfirmed(std::vector<Suspect>& suspects, Predicate isConfirmed) {
  for (Suspect& suspect : suspects) {
    if (suspect.repaired.empty()) continue;
    const auto candidates = quenlith::syntax::findMarkerCandidates(suspect.repaired);
    const FoundMarker marker = makeFoundMarker(candidates.front(), 1, suspect.repaired);
    if (!isConfirmed(suspect, marker)) suspect.diagnostic.fix.reset();
  }
}

}  // namespace

void dropUncertainFixes(const FileScan& scan, const TaskWalk& walk, Findings& findings) {
  keepConfirmed(findings.suspects.code, [&walk](const Suspect& suspect, const FoundMarker& marker) {
    const std::u16string_view element = marker.parts.element;
    if (element == u"task") {
      const auto same = walk.byId.find(marker.id);
      return same != walk.byId.end() && same->second.size() == 1;
    }
    if (suspect.isKeyCompleted) return false;
    if (!suspect.isCompleted) return true;
    return element == u"text" ? marker.isAnchor() && !marker.id.empty() : marker.range.has_value();
  });
  KeyedSet<std::u16string_view> entries;
  for (const FoundMarker& entry : scan.appendix) {
    if (entry.isTask()) entries.insert(entry.id);
  }
  keepConfirmed(findings.suspects.appendix, [&](const Suspect& suspect, const FoundMarker& marker) {
    if (suspect.isKeyCompleted && !hasKnownSettings(marker)) return false;
    if (marker.parts.element != u"task") return true;
    return walk.byId.contains(marker.id) && !entries.contains(marker.id);
  });
}

}  // namespace tessera::check::rules
