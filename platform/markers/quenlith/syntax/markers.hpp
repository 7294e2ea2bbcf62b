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

/// Returns whether `line`, without its line ending, consists of "<@appendix>" in a line comment or
/// a block comment, and blanks: the line that separates the code of a file from its appendix.
QUENLITH_MARKERS_EXPORT bool isAppendixLine(std::u16string_view line) noexcept;

}  // namespace quenlith::syntax
