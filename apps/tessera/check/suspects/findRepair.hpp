#pragma once

#include <cstdint>
#include <optional>
#include <string>
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
  /// The line after it, if there is one.
  std::optional<std::u16string_view> nextLine;
  /// A letter may be swapped with punctuation: that is certain in JSON, but not in an id.
  bool mayMoveNames = false;
  /// A key of JSON must be there.
  bool isKey = false;
};

/// One replacement in a line.
struct Replacement {
  std::uint64_t begin = 0;
  std::uint64_t length = 0;
  std::u16string_view text;
};

/// A fix, and the text that results from it, which begins with a marker.
struct Repair {
  catalogue::Fix fix;
  std::u16string text;
};

/// Returns the repair that consists of `replacement`, if that makes `text` a marker with a blank or
/// nothing after it. A ">" that is inserted must be the end of the text.
std::optional<Repair> repairBy(const DamagedText& text, const Replacement& replacement);

/// Returns the repair that changes or swaps characters of `text`, at the problem or just before it,
/// if exactly one such change makes it a marker.
std::optional<Repair> findRepair(const DamagedText& text);

/// Returns the repair that joins the line to the next one, if the marker was broken there.
std::optional<Repair> joinLines(const DamagedText& text);

}  // namespace tessera::check::suspects
