#include "quenlith/syntax/markers.hpp"

#include <algorithm>
#include <utility>

#include "quenlith/syntax/CommentStart.hpp"
#include "quenlith/syntax/MarkerFinder.hpp"
#include "quenlith/syntax/MarkerUnits.hpp"

namespace quenlith::syntax {

using fl::i18n::ustring;

namespace {

bool isBlankText(std::u16string_view text) noexcept {
  return std::ranges::all_of(text, isBlank);
}

}  // namespace

std::vector<core::MarkerInfo> get_markers_from_snippet(const ustring& text, bool anyElement) {
  std::vector<core::MarkerInfo> markers;
  MarkerFinder finder(text, anyElement ? Elements::kAny : Elements::kKnown);
  MarkerFinder::Found found;
  while (finder.nextMarker(found)) {
    Marker marker(MarkerParts::make(found.match));
    core::MarkerInfo& info = markers.emplace_back();
    info.marker = std::move(marker);
    info.position = found.position;
    info.length = found.match.end - found.position;
    info.range = found.match.range;
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
  MarkerFinder::Found found;
  while (finder.nextMarker(found)) {
    if (found.match.element == element) {
      return true;
    }
  }
  return false;
}

bool isAppendixLine(std::u16string_view line) noexcept {
  constexpr std::u16string_view kAppendix = u"<@appendix>";
  const std::size_t opening = line.find(kAppendix);
  if (opening == line.npos) return false;
  const CommentStart comment = findCommentStart(line, 0, opening);
  if (!isComplete(comment.form) || !isBlankText(line.substr(0, comment.position))) return false;
  const auto after =
      std::min(line.find_first_not_of(u" \t", opening + kAppendix.size()), line.size());
  const auto end = findCloserEnd(line, after, comment.form);
  return end && isBlankText(line.substr(*end));
}

}  // namespace quenlith::syntax
