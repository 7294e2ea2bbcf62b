#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/json/Value.hpp"

namespace quenlith::oracle {

/// A value read by RapidJSON out of 16-bit text, and the position after it.
struct TwinValue {
  foundation::json::Value value;
  /// The units of a string, unpaired surrogates included; empty for other kinds.
  std::u16string units;
  std::size_t end = 0;
};

/// White space that may be between tokens: all of JSON, or spaces and tabs only.
enum class TwinSpace { kAll, kBlanks };

/// Reads the JSON value that begins at `from`, where white space may precede it; what follows it is
/// not read.
///
/// RapidJSON decides what is JSON, the C library what a double is: RapidJSON 1.1 takes
/// 17976931348623158e308 for a finite number. Where our parser has another rule, the twin adds it:
/// - an escaped surrogate without its other half is that unit, RapidJSON rejects a high one;
/// - line breaks are white space only where `space` says so, for RapidJSON they always are;
/// - containers nest at most `depthLimit` deep, in RapidJSON without limit;
/// - a zero may have any exponent, RapidJSON rejects large ones;
/// - of equal keys the last one counts, RapidJSON reports them all.
std::optional<TwinValue> parseByRapidJson(std::u16string_view text, std::size_t from,
                                          TwinSpace space, std::size_t depthLimit);

}  // namespace quenlith::oracle
