#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "tessera/check/catalogue/Diagnostic.hpp"

namespace tessera::check::suspects {

/// A text like a marker, and where it breaks the grammar. Positions count code units of `line`.
struct DamagedText {
  std::uint64_t lineNumber = 1;
  std::u16string_view line;
  /// The text from the leader to the end of the line, or to the next "<@".
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::uint64_t problem = 0;
};

/// One replacement in a line.
struct Replacement {
  std::uint64_t begin = 0;
  std::uint64_t length = 0;
  std::u16string_view text;
};

/// Returns whether `text` becomes a marker by `replacement`, with a blank or nothing after it. A
/// ">" that is inserted must be the end of the text.
bool isRepairedBy(const DamagedText& text, const Replacement& replacement);

/// Returns the fix that makes this replacement.
catalogue::Fix makeFix(const DamagedText& text, const Replacement& replacement);

/// Returns a fix that changes one character of `text`, at the problem or just before it, if exactly
/// one such change makes it a marker. The change is one of those that cannot alter a name or a
/// number.
std::optional<catalogue::Fix> findRepair(const DamagedText& text);

}  // namespace tessera::check::suspects
