#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "fl/i18n/search.hpp"
#include "quenlith/syntax/KnownElement.hpp"

namespace quenlith::syntax {

/// The elements whose markers match: the four known ones, or all except "appendix".
enum class Elements { kKnown, kAny };

/// The parts of one marker as written in a text, or the reason why there is no marker. Borrows from
/// the text.
struct MarkerMatch {
  KnownElement known = KnownElement::kOther;
  std::u16string_view element;
  std::u16string_view type;

  /// A quoted id includes its quotes and its escapes.
  std::u16string_view id;

  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;

  /// From the opening brace to the closing one; empty when there is no data.
  std::u16string_view data;

  /// The position after the closing ">"; if there is no marker, the first unit that breaks the
  /// grammar.
  std::size_t end = 0;

  /// Null when there is a marker.
  const char* problem = nullptr;
};

/// Returns the position of the first "<@" at or after `from`; the size of `text` if there is none.
inline std::size_t findOpening(std::u16string_view text, std::size_t from) noexcept {
  return fl::i18n::findPair<u'<', u'@'>(text, from);
}

/// Matches the marker whose "<@" is at `opening`, where one must be, and writes the result to
/// `match`. Does not check the leader, does not allocate.
void matchMarker(std::u16string_view text, std::size_t opening, Elements elements,
                 MarkerMatch& match) noexcept;

/// Returns the start of the leader before the "<@" at `opening`, with or without blanks between
/// them; nothing if there is no leader.
std::optional<std::size_t> findLeader(std::u16string_view text, std::size_t opening) noexcept;

/// Returns the length of the leader at the start of `text` and the blanks after it; without a
/// leader, the length of the blanks. Nothing if the leader's character is repeated too few times.
std::optional<std::size_t> leaderLength(std::u16string_view text) noexcept;

/// Returns whether `text` is a name: not empty, and only characters that are allowed in one.
bool isName(std::u16string_view text) noexcept;

bool isBlank(char16_t unit) noexcept;

}  // namespace quenlith::syntax
