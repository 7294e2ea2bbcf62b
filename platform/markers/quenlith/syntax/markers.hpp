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
/// If `anyElement` is false, these are the markers of the elements "control", "output", "task" and
/// "text"; otherwise of all elements except "appendix". Text that breaks the grammar is not a
/// marker. Throws only std::bad_alloc, and does not allocate for a text without a marker. Linear
/// for any text.
QUENLITH_MARKERS_EXPORT std::vector<core::MarkerInfo> get_markers_from_snippet(
    const fl::i18n::ustring& text, bool anyElement);

/// Returns the first marker of the list with this element and, unless `type` is empty, this type.
QUENLITH_MARKERS_EXPORT std::optional<core::MarkerInfo> get_marker(
    const std::vector<core::MarkerInfo>& markers, const fl::i18n::ustring& element,
    const fl::i18n::ustring& type);

/// Returns whether a marker of the list has this element.
QUENLITH_MARKERS_EXPORT bool has_feature(const std::vector<core::MarkerInfo>& markers,
                                         const fl::i18n::ustring& element);

/// Like the overload for the result of `get_markers_from_snippet(text, false)`, but stops at the
/// first such marker and does not allocate.
QUENLITH_MARKERS_EXPORT bool has_feature(const fl::i18n::ustring& text,
                                         const fl::i18n::ustring& element);

/// Returns whether `line`, without its line ending, consists of a leader, optional blanks,
/// "<@appendix>" and optional blanks: the line that separates the code of a file from its appendix.
QUENLITH_MARKERS_EXPORT bool isAppendixLine(std::u16string_view line) noexcept;

/// A text that begins like a marker of a known element, with a leader, but then breaks the grammar.
/// Positions count 16-bit code units from the start of the text.
struct DamagedMarker {
  /// Start of the leader.
  std::uint64_t position = 0;

  /// The first unit that breaks the grammar; the end of the text if the marker is cut off there.
  std::uint64_t problemPosition = 0;

  /// What is wrong, as text for a person. A constant.
  const char* reason = "";
};

/// Returns the damaged markers of `text` by ascending position, for tools that help an author.
/// Linear for any text.
QUENLITH_MARKERS_EXPORT std::vector<DamagedMarker> findDamagedMarkers(std::u16string_view text);

}  // namespace quenlith::syntax
