#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tessera/check/catalogue/Diagnostic.hpp"
#include "tessera/check/catalogue/DiagnosticKind.hpp"

namespace tessera::check::catalogue {

/// kFailure: a parser recorded a failure in the document. kWarning: the document has no record of
/// it.
enum class Severity : std::uint8_t { kWarning, kFailure };

/// Everything that is said about one kind of diagnostic. All texts are ASCII.
struct CatalogueEntry {
  DiagnosticKind kind;
  /// The name that users see; lower case, words joined by "_".
  std::string_view id;
  Severity severity;
  /// What is wrong, as a phrase: for headings and lists.
  std::string_view title;
  /// The forms of the message, one per reason. "%1" to "%9" are replaced by arguments.
  std::span<const std::string_view> messages;
  /// What it means and what to do; sentences, several lines.
  std::string_view explanation;
  /// A source that has the problem, and the same source without it. Lines end in LF.
  std::string_view before;
  std::string_view after;
  /// What `check --fix` does, as a sentence; empty if it never corrects this.
  std::string_view fix;
};

/// Returns all entries in the order of `DiagnosticKind`: a kind is an index of this table.
std::span<const CatalogueEntry> catalogue() noexcept;

inline const CatalogueEntry& entryOf(DiagnosticKind kind) noexcept {
  return catalogue()[static_cast<std::size_t>(kind)];
}

/// Returns the entry with this id, or null.
const CatalogueEntry* findEntry(std::string_view id) noexcept;

inline Severity severityOf(const Diagnostic& diagnostic) noexcept {
  return entryOf(diagnostic.kind).severity;
}

/// Returns the message of the form `form` of `kind`. The arguments are UTF-8 without control
/// characters.
std::string messageOf(DiagnosticKind kind, std::size_t form,
                      std::initializer_list<std::string_view> arguments);

/// Returns a diagnostic with that message.
Diagnostic makeDiagnostic(DiagnosticKind kind, std::size_t form, Span span,
                          std::initializer_list<std::string_view> arguments);

}  // namespace tessera::check::catalogue
