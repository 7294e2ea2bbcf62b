#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "fl/i18n/search.hpp"
#include "quenlith/syntax/KnownElement.hpp"

namespace quenlith::syntax {

/// The elements whose markers are taken: the four known ones, or all but "appendix".
enum class Elements { kKnown, kAny };

/// The parts of one marker as they stand in a text, or the reason why there is none. Borrows from
/// the text.
struct MarkerMatch {
  KnownElement known = KnownElement::kOther;
  std::u16string_view element;
  std::u16string_view type;

  /// The quotes of a quoted id included.
  std::u16string_view id;

  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;

  /// From the opening brace to the closing one; empty when there is no data.
  std::u16string_view data;

  /// Behind the closing ">"; where there is no marker, the first unit that breaks the grammar.
  std::size_t end = 0;

  /// Null when there is a marker.
  const char* problem = nullptr;
};

/// Returns the first position at or after `from` that has "<@"; the size of the text without one.
inline std::size_t findOpening(std::u16string_view text, std::size_t from) noexcept {
  return fl::i18n::findPair<u'<', u'@'>(text, from);
}

/// Matches the marker whose "<@" stands at `opening`, which must be so, into `match`; its leader is
/// not looked at. Never throws and does not allocate.
void matchMarker(std::u16string_view text, std::size_t opening, Elements elements,
                 MarkerMatch& match) noexcept;

/// Returns the start of the leader that stands, blanks apart, before the "<@" at `opening`.
std::optional<std::size_t> findLeader(std::u16string_view text, std::size_t opening) noexcept;

/// Returns the length of the leader that begins `text` and of the blanks behind it; a text
/// without a leader may begin with blanks. Nothing when a character is there too few times.
std::optional<std::size_t> leaderLength(std::u16string_view text) noexcept;

/// Returns whether `text` is one or more characters of a name.
bool isName(std::u16string_view text) noexcept;

bool isBlank(char16_t unit) noexcept;

}  // namespace quenlith::syntax
