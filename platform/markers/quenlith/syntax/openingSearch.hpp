#pragma once

#include <cstddef>
#include <string_view>

#include "quenlith/export/markers.hpp"

namespace quenlith::syntax {

/// Returns the first place at or after `from` where "<@" stands, or npos. `from` is at most the
/// size of the text. Picks the widest search that the processor has.
QUENLITH_MARKERS_EXPORT std::size_t findOpening(std::u16string_view text,
                                                std::size_t from) noexcept;

/// One way to search; all of them give the same result.
using OpeningSearch = std::size_t (*)(std::u16string_view text, std::size_t from) noexcept;

/// Unit by unit.
QUENLITH_MARKERS_EXPORT std::size_t findOpeningPlain(std::u16string_view text,
                                                     std::size_t from) noexcept;

/// The width of the vectors that a search may use.
enum class VectorWidth { kNone, k128, k256 };

/// Returns the widest vectors that both the processor and this build have.
QUENLITH_MARKERS_EXPORT VectorWidth widestVectors() noexcept;

/// Returns the search with vectors of `width`, or the widest one below it in this build.
QUENLITH_MARKERS_EXPORT OpeningSearch openingSearch(VectorWidth width) noexcept;

}  // namespace quenlith::syntax
