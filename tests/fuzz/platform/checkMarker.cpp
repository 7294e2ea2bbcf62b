#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/textOf.hpp"
#include "oracle/markers/MarkerTwin.hpp"
#include "quenlith/syntax/MarkerCandidate.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::fuzz {

using fl::i18n::ustring;
using syntax::Marker;
using syntax::MarkerProblem;

namespace {

using Markers = std::vector<build::markup::core::MarkerInfo>;

void checkRoundTrip(const Marker& marker) {
  const ustring canonical = marker.toString();
  const oracle::PlainMarker plain{marker.getElement(), marker.getType(), marker.getId(),
                                  marker.getData()};
  require(canonical == canonicalText(plain), "canonical text is written by its rules");
  require(Marker(canonical) == marker, "canonical text parses to an equal marker");
  require(Marker(canonical).toString() == canonical, "canonical text is stable");
}

void checkEach(const Markers& markers, const ustring& text) {
  for (const auto& info : markers) {
    checkRoundTrip(info.marker);
    require(Marker(text.substr(info.position, info.length)) == info.marker,
            "the text of a marker makes it");
  }
}

void checkFeatures(const Markers& markers, const ustring& text) {
  for (const ustring element : {u"control", u"output", u"task", u"text"}) {
    const bool isThere = std::ranges::any_of(
        markers, [&](const auto& info) { return info.marker.getElement() == element; });
    require(syntax::has_feature(text, element) == isThere, "a feature of a text is found");
    require(syntax::has_feature(markers, element) == isThere, "a feature of a list is found");
    const auto first = syntax::get_marker(markers, element, u"");
    require(first.has_value() == isThere, "the marker of an element is found");
  }
}

void checkCandidates(const Markers& markers, const ustring& text) {
  auto marker = markers.begin();
  std::size_t damaged = 0;
  for (const auto& candidate : syntax::findMarkerCandidates(text)) {
    // Text before an appendix line is the only problem that may be before the candidate.
    require(candidate.position <= candidate.opening && candidate.problemPosition <= text.size() &&
                (candidate.position <= candidate.problemPosition ||
                 candidate.problem == MarkerProblem::kBadAppendixLine),
            "positions are in the text and in order");
    require(text.compare(candidate.opening, 2, u"<@") == 0, "a candidate begins with its opening");
    if (candidate.problem != MarkerProblem::kNone) {
      ++damaged;
      continue;
    }
    require(marker != markers.end() && candidate.position == marker->position &&
                candidate.problemPosition == marker->position + marker->length,
            "a candidate without a problem is a marker");
    ++marker;
  }
  require(marker == markers.end(), "every marker is a candidate");
  require(syntax::findDamagedMarkers(text).size() == damaged, "damaged markers are candidates");
}

bool isBlank(std::u16string_view text) {
  return text.find_first_not_of(u" \t") == text.npos;
}

bool isBare(const oracle::TwinMarker& marker) {
  return marker.element == u"output" && marker.type.empty() && marker.id.empty() && !marker.range &&
         marker.data.empty();
}

// An appendix line is a line that contains nothing but a marker without any part, apart from the
// name of the element.
bool looksLikeAppendixLine(ustring line) {
  constexpr std::u16string_view kAppendix = u"<@appendix>";
  const std::size_t opening = line.find(kAppendix);
  if (opening == ustring::npos) return false;
  line.replace(opening, kAppendix.size(), u"<@output>");
  const auto markers = oracle::twinMarkers(line, false);
  if (markers.empty() || !isBare(markers.front())) return false;
  const std::size_t begin = markers.front().position;
  const std::size_t end = begin + markers.front().length;
  return isBlank(line.substr(0, begin)) && isBlank(line.substr(end));
}

}  // namespace

void checkMarker(std::string_view input) {
  const ustring text = textOf(input);
  checkRoundTrip(Marker(text));
  const Markers known = syntax::get_markers_from_snippet(text, false);
  checkEach(known, text);
  checkEach(syntax::get_markers_from_snippet(text, true), text);
  checkFeatures(known, text);
  checkCandidates(known, text);
  const ustring line = text.substr(0, text.find(u'\n'));
  require(syntax::isAppendixLine(line) == looksLikeAppendixLine(line),
          "an appendix line is a bare marker alone");
}

}  // namespace quenlith::fuzz
