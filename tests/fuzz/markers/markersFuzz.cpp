#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "fuzz/require.hpp"
#include "oracle/markers/MarkerTwin.hpp"
#include "quenlith/syntax/MarkerCandidate.hpp"
#include "quenlith/syntax/markers.hpp"

namespace {

using fl::i18n::ustring;
using quenlith::fuzz::require;
using quenlith::oracle::TwinMarker;
using quenlith::syntax::Marker;
using quenlith::syntax::MarkerProblem;

// The bytes as UTF-8; each ill-formed sequence becomes one half of a pair.
ustring textOf(std::string_view bytes) {
  ustring text = fl::i18n::utf8_to_ustring(bytes);
  bool high = false;
  for (char16_t& unit : text) {
    if (unit == u'\uFFFD') {
      high = !high;
      unit = high ? char16_t{0xD83D} : char16_t{0xDE00};
    }
  }
  return text;
}

void checkScan(const ustring& text, bool anyElement) {
  const auto real = quenlith::syntax::get_markers_from_snippet(text, anyElement);
  const std::vector<TwinMarker> twin = quenlith::oracle::twinMarkers(text, anyElement);
  require(real.size() == twin.size(), "as many markers as the grammar gives");
  for (std::size_t index = 0; index < real.size(); ++index) {
    const Marker& marker = real[index].marker;
    require(real[index].position == twin[index].position &&
                real[index].length == twin[index].length && real[index].range == twin[index].range,
            "each in its place");
    require(marker.getElement() == twin[index].element && marker.getType() == twin[index].type &&
                marker.getId() == twin[index].id && marker.getData() == twin[index].data,
            "each with its parts");
    const ustring canonical = marker.toString();
    require(Marker(canonical) == marker, "canonical text parses to an equal marker");
    require(Marker(canonical).toString() == canonical, "canonical text is stable");
    require(anyElement || quenlith::syntax::has_feature(text, marker.getElement()),
            "its element is found");
  }
}

void checkCandidates(const ustring& text) {
  const auto markers = quenlith::syntax::get_markers_from_snippet(text, false);
  auto marker = markers.begin();
  for (const auto& candidate : quenlith::syntax::findMarkerCandidates(text)) {
    // Text before an appendix line is the only problem that may be before the candidate.
    require(candidate.position <= candidate.opening && candidate.problemPosition <= text.size() &&
                (candidate.position <= candidate.problemPosition ||
                 candidate.problem == MarkerProblem::kBadAppendixLine),
            "positions are in the text and in order");
    require(text.compare(candidate.opening, 2, u"<@") == 0, "a candidate begins with its opening");
    if (candidate.problem != MarkerProblem::kNone) continue;
    require(marker != markers.end() && candidate.position == marker->position &&
                candidate.problemPosition == marker->position + marker->length,
            "a candidate without a problem is a marker");
    ++marker;
  }
  require(marker == markers.end(), "every marker is a candidate");
}

}  // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's name for it
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ustring text = textOf(std::string_view(reinterpret_cast<const char*>(data), size));
  checkScan(text, false);
  checkScan(text, true);
  const Marker marker(text);
  require(Marker(marker.toString()) == marker, "a marker from text comes back");
  checkCandidates(text);
  return 0;
}
