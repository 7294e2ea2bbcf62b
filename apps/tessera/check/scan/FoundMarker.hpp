#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "quenlith/syntax/MarkerCandidate.hpp"
#include "tessera/check/catalogue/Diagnostic.hpp"

namespace tessera::check::scan {

/// A marker, or a text like one, in a line of a file. Borrows the line.
struct FoundMarker {
  /// Its positions and views are those of `lineText`.
  quenlith::syntax::MarkerCandidate parts;
  std::uint64_t line = 1;
  /// As the parsers read it: see EscapedLines.
  std::u16string_view lineText;
  /// A task marker that the task parser does not see, because a backslash is between it and its
  /// leader "%%".
  bool isEscapedTask = false;
  /// Whether a task marker of its line contains "%%\\", so that the task parser and the line parser
  /// read different markers there.
  bool isOnAmbiguousLine = false;
  /// Without quotes and escapes; as written if the quotes are damaged.
  std::u16string id;
  /// Only if the range is well-formed. A number too large for 64 bits is 2^64 - 1.
  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;

  bool isMarker() const noexcept { return parts.problem == quenlith::syntax::MarkerProblem::kNone; }
  bool isTask() const noexcept { return isMarker() && parts.element == u"task"; }
  bool isAnchor() const noexcept {
    return isMarker() && parts.element == u"text" && parts.type == u"anchor";
  }

  /// Returns the position of `part`, a view of `lineText`.
  std::uint64_t positionOf(std::u16string_view part) const noexcept {
    return static_cast<std::uint64_t>(part.data() - lineText.data());
  }

  /// Returns the span of `part`, a view of `lineText`.
  catalogue::Span spanOf(std::u16string_view part) const noexcept {
    const std::uint64_t begin = positionOf(part);
    return catalogue::spanOf(line, begin, begin + part.size());
  }

  /// Returns the span [`begin`, `end`) of the line.
  catalogue::Span spanOf(std::uint64_t begin, std::uint64_t end) const noexcept {
    return catalogue::spanOf(line, begin, end);
  }

  /// The position after the marker. For a text that is not one, the position after its ">", or
  /// after the unit that breaks the grammar.
  std::uint64_t end() const noexcept;

  /// The marker from its leader to its end.
  catalogue::Span span() const noexcept { return spanOf(parts.position, end()); }

  std::u16string_view text() const noexcept {
    return lineText.substr(parts.position, end() - parts.position);
  }
};

/// Returns how messages name the marker: its id in quotes, or "without an id".
std::string nameOf(const FoundMarker& marker);

/// Makes the record of a candidate that was found in `lineText`, line `line` of a file.
FoundMarker makeFoundMarker(const quenlith::syntax::MarkerCandidate& parts, std::uint64_t line,
                            std::u16string_view lineText);

}  // namespace tessera::check::scan
