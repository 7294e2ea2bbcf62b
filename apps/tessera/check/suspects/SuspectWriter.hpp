#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "tessera/check/catalogue/Diagnostic.hpp"
#include "tessera/check/scan/FoundMarker.hpp"
#include "tessera/check/suspects/Suspect.hpp"
#include "tessera/check/suspects/findRepair.hpp"

namespace tessera::check::suspects {

/// The diagnostic of one text and its fix, and the text at the problem. What is wrong is for the
/// derived class to say.
class SuspectWriter {
 protected:
  using DiagnosticKind = catalogue::DiagnosticKind;
  using Span = catalogue::Span;
  using Arguments = std::initializer_list<std::string_view>;

  /// Borrows `found` and the lines. The text ends at `end`; `nextLine` is the line after its own.
  SuspectWriter(const scan::FoundMarker& found, std::uint64_t end,
                std::optional<std::u16string_view> nextLine);

  void addId(std::u16string_view id);

  void report(DiagnosticKind kind, std::size_t form, Span span, Arguments arguments);

  /// Like `report` at the problem, with the fix of a single wrong character if there is one.
  void reportRepairable(DiagnosticKind kind, std::size_t form, Arguments arguments);

  void repair();
  void fixBy(const Replacement& replacement) { take(repairBy(text, replacement)); }
  void take(std::optional<Repair> repair);

  std::u16string_view restAtProblem() const {
    return line.substr(text.problem, end - text.problem);
  }

  /// Returns the word, or else the one character, at the problem; empty at the end of the text.
  std::u16string_view wordAtProblem() const;

  /// Returns how a message names what is at the problem.
  std::string foundAtProblem() const;

  Span atProblem() const;

  const scan::FoundMarker& found;
  const quenlith::syntax::MarkerCandidate& parts;
  std::u16string_view line;
  std::uint64_t end;
  DamagedText text;
  Suspect suspect;
};

}  // namespace tessera::check::suspects
