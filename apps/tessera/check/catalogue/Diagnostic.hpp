#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tessera/check/catalogue/DiagnosticKind.hpp"

namespace tessera::check::catalogue {

/// A position in a file, whose lines are those of `source::SourceLines`.
struct Position {
  /// 1-based.
  std::uint64_t line = 1;
  /// Counts 16-bit code units from the start of the line, 0-based; at most the length of the line.
  std::uint64_t unit = 0;

  // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 sees a null pointer here.
  auto operator<=>(const Position&) const = default;
};

/// The text [`begin`, `end`). May be empty, which marks the position `begin`.
struct Span {
  Position begin;
  Position end;

  // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 sees a null pointer here.
  auto operator<=>(const Span&) const = default;
};

/// Returns the span [`begin`, `end`) of code units of line `line`.
constexpr Span spanOf(std::uint64_t line, std::uint64_t begin, std::uint64_t end) noexcept {
  return {{line, begin}, {line, end}};
}

struct CheckedFile;

/// A second place that a diagnostic is about.
struct Note {
  Span span;
  /// UTF-8 without control characters. A noun phrase if the place is in another file.
  std::string message;
  /// The other file that the place is in, borrowed; null for the file of the diagnostic.
  const CheckedFile* otherFile = nullptr;
};

/// Replaces the text of `span` by `text`, which is UTF-8; its line endings, if any, are LF.
///
/// A span that ends at unit 0 of the line after the last one of the file ends at the end of the
/// file.
struct Edit {
  Span span;
  std::string text;
};

/// A safe way to correct a file. The edits are in ascending order and do not overlap.
struct Fix {
  /// An imperative: "Insert \">\"". UTF-8 without control characters.
  std::string description;
  std::vector<Edit> edits;
};

/// What is wrong or doubtful at one place of a file.
struct Diagnostic {
  DiagnosticKind kind = DiagnosticKind::kParserFailure;
  /// UTF-8 without control characters.
  std::string message;
  Span span;
  /// The other places, the most important one first.
  std::vector<Note> notes;
  std::optional<Fix> fix;
  /// The id of a task marker of which no partner is known; another file of the run may have it.
  std::optional<std::u16string> unpairedTask = std::nullopt;
};

}  // namespace tessera::check::catalogue
