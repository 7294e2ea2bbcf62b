#include "quenlith/syntax/markers.hpp"

#include <algorithm>
#include <array>

#include "quenlith/syntax/MarkerFinder.hpp"
#include "quenlith/syntax/MarkerParts.hpp"
#include "quenlith/syntax/openingSearch.hpp"

namespace quenlith::syntax {

namespace {

using fl::i18n::ustring;

constexpr std::array<std::u16string_view, 4> kKnownElements{u"control", u"output", u"task",
                                                            u"text"};

core::MarkerInfo makeInfo(const MarkerFinder::Candidate& found) {
  return {MarkerParts::makeMarker(found.match), found.position, found.match.end - found.position,
          found.match.range};
}

}  // namespace

std::vector<core::MarkerInfo> get_markers_from_snippet(const ustring& text, bool anyElement) {
  std::vector<core::MarkerInfo> markers;
  MarkerFinder finder(text, anyElement ? Elements::kAny : Elements::kKnown);
  while (const auto found = finder.nextMarker()) {
    markers.push_back(makeInfo(*found));
  }
  return markers;
}

std::optional<core::MarkerInfo> get_marker(const std::vector<core::MarkerInfo>& markers,
                                           const ustring& element, const ustring& type) {
  const auto found = std::ranges::find_if(markers, [&](const core::MarkerInfo& info) {
    return info.marker.elementView() == element && (type.empty() || info.marker.typeView() == type);
  });
  return found == markers.end() ? std::nullopt : std::optional<core::MarkerInfo>(*found);
}

bool has_feature(const std::vector<core::MarkerInfo>& markers, const ustring& element) {
  return std::ranges::any_of(
      markers, [&](const core::MarkerInfo& info) { return info.marker.elementView() == element; });
}

bool has_feature(const ustring& text, const ustring& element) {
  MarkerFinder finder(text, Elements::kKnown);
  while (const auto found = finder.nextMarker()) {
    if (found->match.element == element) {
      return true;
    }
  }
  return false;
}

bool mayHoldMarker(std::u16string_view text) noexcept {
  return findOpening(text, 0) != std::u16string_view::npos;
}

bool isKnownElement(std::u16string_view element) noexcept {
  return std::ranges::find(kKnownElements, element) != kKnownElements.end();
}

const ustring& bareMarkerText(std::u16string_view element) {
  const auto textOf = [](std::size_t i) { return Marker(ustring(kKnownElements[i])).toString(); };
  static const std::array<ustring, kKnownElements.size() + 1> kTexts{
      textOf(0), textOf(1), textOf(2), textOf(3), Marker().toString()};
  const auto place = std::ranges::find(kKnownElements, element);
  return kTexts[static_cast<std::size_t>(place - kKnownElements.begin())];
}

bool isAppendixLine(std::u16string_view line) noexcept {
  constexpr std::u16string_view kAppendix = u"<@appendix>";
  const std::size_t opening = line.find(kAppendix);
  if (opening == std::u16string_view::npos || findLeader(line, opening) != std::size_t{0}) {
    return false;
  }
  return std::ranges::all_of(line.substr(opening + kAppendix.size()), isBlank);
}

std::vector<DamagedMarker> findDamagedMarkers(std::u16string_view text) {
  std::vector<DamagedMarker> damaged;
  MarkerFinder finder(text, Elements::kKnown);
  while (const auto candidate = finder.nextCandidate()) {
    if (candidate->match.problem != nullptr && isKnownElement(candidate->match.element)) {
      damaged.push_back({candidate->position, candidate->match.end, candidate->match.problem});
    }
  }
  return damaged;
}

}  // namespace quenlith::syntax
