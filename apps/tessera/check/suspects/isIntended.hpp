#pragma once

#include <string_view>

#include "tessera/check/scan/FoundMarker.hpp"

namespace tessera::check::suspects {

/// The word of the line that starts an appendix.
inline constexpr std::u16string_view kAppendix = u"appendix";

/// Returns the element that a misspelt one resembles; empty if there is none. "appendix" counts as
/// one.
std::u16string_view similarElement(std::u16string_view written);

/// Returns the element that `written` begins with, where something other than "#" or ":" was lost
/// after it, as in "taskfit"; empty if there is none.
std::u16string_view elementAtStart(std::u16string_view written);

/// Returns what is written in place of the element: the text from "<@" to a blank or a character
/// that begins another part. If such a character replaced one of the element, returns as much as
/// the element has.
std::u16string_view writtenElement(const scan::FoundMarker& found);

/// Returns whether the text has a leader but for the character directly before its "<@", as in
/// "#x<@task#a>".
bool hasReplacedBlank(const scan::FoundMarker& found);

/// Returns whether an element begins with `written`, and is longer. An empty text is the start of
/// any.
bool isStartOfElement(std::u16string_view written);

/// Returns the first element that begins with `written`; empty if there is none.
std::u16string_view elementStartingWith(std::u16string_view written);

/// Returns whether the author certainly meant the text, which is not a marker, as one.
///
/// Ordinary code contains "<@" too. So a comment leader and an element that is known or resembles
/// one must be there, or a text that is a marker in all other respects.
bool isIntended(const scan::FoundMarker& found);

}  // namespace tessera::check::suspects
