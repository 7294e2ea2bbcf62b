#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "fl/i18n/search.hpp"
#include "quenlith/syntax/CommentForm.hpp"
#include "quenlith/syntax/KnownElement.hpp"
#include "quenlith/syntax/MarkerProblem.hpp"

namespace quenlith::syntax {

/// The element of the line that begins an appendix. It is not that of a marker.
inline constexpr std::u16string_view kAppendixElement = u"appendix";

/// The elements whose markers match: the four known ones, all except "appendix", or all.
enum class Elements { kKnown, kAny, kAnyAndAppendix };

/// The parts of one marker as written in a text, or the reason why there is no marker. Borrows from
/// the text.
struct MarkerMatch {
  // Not defaulted: g++ 12 fills a member of an aggregate by "rep stos", which takes longer to begin
  // than the separate stores of this constructor take in all.
  // NOLINTNEXTLINE(modernize-use-equals-default)
  MarkerMatch() noexcept {}

  KnownElement known = KnownElement::kOther;
  std::u16string_view element;
  std::u16string_view type;

  /// A quoted id includes its quotes and its escapes.
  std::u16string_view id;

  std::optional<std::pair<std::uint64_t, std::uint64_t>> range;

  /// From the opening bracket to the closing one; empty when there is no range.
  std::u16string_view rangeText;

  /// From the opening brace to the closing one; empty when there is no data.
  std::u16string_view data;

  /// The position after the marker; if there is no marker, the first unit that breaks the grammar,
  /// or the position where the closer must begin.
  std::size_t end = 0;

  /// The position after the closing ">"; 0 if it is not reached.
  std::size_t bodyEnd = 0;

  /// What is wrong with a quoted id or with the data, as text for a person. A constant.
  const char* jsonReason = "";

  MarkerProblem problem = MarkerProblem::kNone;
};

/// Returns the position of the first "<@" at or after `from`; the size of `text` if there is none.
inline std::size_t findOpening(std::u16string_view text, std::size_t from) noexcept {
  return fl::i18n::findPair<u'<', u'@'>(text, from);
}

/// Matches the marker whose "<@" is at `opening`, where one must be, and writes the result to
/// `match`. After an opener, the closer of `comment` must follow. Does not allocate.
void matchMarker(std::u16string_view text, std::size_t opening, CommentForm comment,
                 Elements elements, MarkerMatch& match) noexcept;

/// Returns whether `text` is a name: not empty, and only characters that are allowed in one.
bool isName(std::u16string_view text) noexcept;

}  // namespace quenlith::syntax
