#pragma once

#include <array>
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

/// The forms of a message, one per reason. "%1" to "%9" are replaced by arguments.
class MessageForms {
 public:
  template <class... Text>
  // NOLINTNEXTLINE(google-explicit-constructor): the table lists texts.
  constexpr MessageForms(const Text&... text) noexcept
      : texts{std::string_view(text)...}, count(sizeof...(text)) {}

  constexpr std::size_t size() const noexcept { return count; }
  constexpr std::string_view operator[](std::size_t form) const noexcept { return texts[form]; }
  constexpr const std::string_view* begin() const noexcept { return texts.data(); }
  constexpr const std::string_view* end() const noexcept { return texts.data() + count; }

 private:
  std::array<std::string_view, 8> texts;
  std::size_t count;
};

/// Everything that is said about one kind of diagnostic. All texts are ASCII.
struct CatalogueEntry {
  DiagnosticKind kind;
  /// The name that users see; lower case, words joined by "_".
  std::string_view id;
  Severity severity;
  /// What is wrong, as a phrase: for headings and lists.
  std::string_view title;
  MessageForms messages;
  /// What it means and what to do; sentences, several lines.
  std::string_view explanation;
  /// A source that has the problem, and the same source without it. Lines end in LF. A line that
  /// ends in "# and N lines more" is N + 1 such lines.
  std::string_view before;
  std::string_view after;
  /// What `check --fix` does, as a sentence; empty if it never corrects this.
  std::string_view fix;
  /// The options of `check` with which the example has the problem.
  std::string_view exampleOptions = "";
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
