#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::source {

/// Returns how many characters `text` has; a surrogate pair is one.
std::uint64_t countCharacters(std::u16string_view text) noexcept;

/// Returns the place right after `text`, whose lines end in LF.
diagnostics::Place endOf(std::u16string_view text) noexcept;

/// Lines joined by LF. One empty line and no line at all have the same text.
struct JoinedLines {
  std::u16string text;
  bool any = false;
};

/// Walks joined lines from the first to the last.
class LineCursor {
 public:
  /// Borrows `text` for its life; it is looked at only when there is `any` line.
  LineCursor(std::u16string_view text, bool any) noexcept : rest(text), more(any) {}

  /// Returns the next line; nothing after the last one.
  std::optional<std::u16string_view> next() noexcept;

 private:
  std::u16string_view rest;
  bool more;
};

}  // namespace tessera::source
