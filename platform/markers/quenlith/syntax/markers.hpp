#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/core/MarkerInfo.hpp"
#include "quenlith/export/markers.hpp"

namespace quenlith::syntax {

namespace core = build::markup::core;

/// Returns the markers of `text` by ascending position; they never overlap.
///
/// With `anyElement` false these are the markers of the elements "control", "output", "task" and
/// "text"; with true also well-formed markers of other elements, "appendix" excepted. What breaks
/// the grammar is no marker. Throws nothing but std::bad_alloc, and does not allocate for a text
/// without a marker. Linear in the text, whatever it holds.
QUENLITH_MARKERS_EXPORT std::vector<core::MarkerInfo> get_markers_from_snippet(
    const fl::i18n::ustring& text, bool anyElement);

/// Returns the first marker of the list with the element and, unless `type` is empty, the type.
QUENLITH_MARKERS_EXPORT std::optional<core::MarkerInfo> get_marker(
    const std::vector<core::MarkerInfo>& markers, const fl::i18n::ustring& element,
    const fl::i18n::ustring& type);

/// Returns whether a marker of the list has the element.
QUENLITH_MARKERS_EXPORT bool has_feature(const std::vector<core::MarkerInfo>& markers,
                                         const fl::i18n::ustring& element);

/// Like the question to the list that `get_markers_from_snippet(text, false)` returns, but stops
/// at the first such marker and does not allocate.
QUENLITH_MARKERS_EXPORT bool has_feature(const fl::i18n::ustring& text,
                                         const fl::i18n::ustring& element);

/// Returns whether `line`, without its line ending, holds nothing but a leader, optional blanks,
/// "<@appendix>" and trailing blanks: the line that parts the code of a file from its appendix.
QUENLITH_MARKERS_EXPORT bool isAppendixLine(std::u16string_view line) noexcept;

/// A text that begins like a marker of a known element, leader included, and breaks the grammar
/// further on. Numbers count 16-bit code units from the start of the snippet.
struct DamagedMarker {
  /// Start of the leader.
  std::uint64_t position = 0;

  /// The first unit that cannot stand where it stands; the end of the text when that cuts it off.
  std::uint64_t problemPosition = 0;

  /// What is wrong, for a person. A constant.
  const char* reason = "";
};

/// Returns what looks like a marker of `text` and is none, by ascending position, for tools that
/// help an author. Linear in the text.
QUENLITH_MARKERS_EXPORT std::vector<DamagedMarker> findDamagedMarkers(std::u16string_view text);

}  // namespace quenlith::syntax
