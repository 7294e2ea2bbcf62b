#pragma once

#include <cstdint>

#include "quenlith/export/markers.hpp"

namespace quenlith::syntax {

/// Why a text that begins with "<@" is not a marker.
enum class MarkerProblem : std::uint8_t {
  /// It is a marker.
  kNone,

  // The text from "<@" to ">".
  kMissingElement,
  kUnknownElement,
  kMissingType,
  kMissingId,
  /// The id begins with a quote and is not a JSON string.
  kBadQuotedId,
  kMissingBlankBeforeRange,
  kRangeNumberMissing,
  kRangeCommaMissing,
  kRangeBracketMissing,
  kMissingBlankBeforeData,
  /// The data is not a JSON object within the limits.
  kBadData,
  /// There is no ">" where the marker must end.
  kMissingEnd,

  // The comment around it.
  kMissingLeader,
  kLeaderTooShort,
  kMissingBlankAfterRemark,
  kMissingCloser,

  /// The element is "appendix", but other text is on the line, or a part follows the element.
  kBadAppendixLine
};

/// Returns a description of the problem for a person, without the reason of a JSON problem. A
/// constant; empty for `kNone`.
QUENLITH_MARKERS_EXPORT const char* describe(MarkerProblem problem) noexcept;

}  // namespace quenlith::syntax
