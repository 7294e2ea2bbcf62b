#include "oracle/support/compareScans.hpp"

#include <algorithm>
#include <array>

#include "oracle/support/show.hpp"
#include "quenlith/syntax/MarkerCandidate.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::oracle {

namespace {

using fl::i18n::ustring;
using syntax::Marker;
using syntax::MarkerProblem;
using syntax::core::MarkerInfo;

bool hasParts(const Marker& real, const TwinMarker& twin) {
  return real.getElement() == twin.element && real.getType() == twin.type &&
         real.getId() == twin.id && real.getData() == twin.data;
}

bool agrees(const ustring& text, const MarkerInfo& real, const TwinMarker& twin) {
  return real.position == twin.position && real.length == twin.length && real.range == twin.range &&
         hasParts(real.marker, twin) && real.marker.toString() == canonicalText(twin) &&
         hasParts(Marker(text.substr(twin.position, twin.length)), twin) &&
         hasParts(Marker(canonicalText(twin)), twin);
}

bool haveSameMarkers(const ustring& text, bool anyElement, const std::vector<TwinMarker>& twin) {
  const auto real = syntax::get_markers_from_snippet(text, anyElement);
  return std::equal(real.begin(), real.end(), twin.begin(), twin.end(),
                    [&](const MarkerInfo& a, const TwinMarker& b) { return agrees(text, a, b); });
}

// The candidates without a problem are the markers.
bool haveSameCandidates(const ustring& text, const std::vector<TwinMarker>& known) {
  auto marker = known.begin();
  for (const auto& candidate : syntax::findMarkerCandidates(text)) {
    if (candidate.problem != MarkerProblem::kNone) continue;
    if (marker == known.end() || candidate.position != marker->position ||
        candidate.problemPosition != marker->position + marker->length) {
      return false;
    }
    ++marker;
  }
  return marker == known.end();
}

bool haveSameFeatures(const ustring& text, const std::vector<TwinMarker>& known) {
  static const std::array<ustring, 5> kElements = {u"control", u"output", u"task", u"text",
                                                   u"widget"};
  return std::all_of(kElements.begin(), kElements.end(), [&](const ustring& element) {
    const bool expected = std::any_of(known.begin(), known.end(), [&](const TwinMarker& marker) {
      return marker.element == element;
    });
    return syntax::has_feature(text, element) == expected;
  });
}

}  // namespace

std::string compareScans(const ustring& text, const std::vector<TwinMarker>& known,
                         const std::vector<TwinMarker>& any) {
  const char* difference = nullptr;
  if (!haveSameMarkers(text, false, known)) difference = "known markers";
  if (!haveSameMarkers(text, true, any)) difference = "markers of any element";
  if (!haveSameCandidates(text, known)) difference = "candidates";
  if (!haveSameFeatures(text, known)) difference = "features";
  if (difference == nullptr) return {};
  return std::string("other ") + difference + " in " + show(text);
}

}  // namespace quenlith::oracle
