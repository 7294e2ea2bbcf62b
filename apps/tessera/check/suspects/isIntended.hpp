#pragma once

#include <string_view>

#include "tessera/check/scan/FoundMarker.hpp"

namespace tessera::check::suspects {

/// Returns the element that a misspelt one resembles; empty if there is none. "appendix" counts as
/// one.
std::u16string_view similarElement(std::u16string_view written);

/// Returns the element that `written` begins with, where something other than "#" or ":" was lost
/// after it, as in "taskfit"; empty if there is none.
std::u16string_view elementAtStart(std::u16string_view written);

/// Returns whether the author certainly meant the text, which is not a marker, as one.
///
/// Ordinary code contains "<@" too. So a comment leader and an element that is known or resembles
/// one must be there, or a text that is a marker in all other respects.
bool isIntended(const scan::FoundMarker& found);

}  // namespace tessera::check::suspects
