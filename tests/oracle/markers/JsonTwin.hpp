#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/json/Value.hpp"

namespace quenlith::oracle {

/// A value that RapidJSON read from 16-bit text, and the position after it.
struct TwinValue {
  foundation::json::Value value;
  /// The units of a string, unpaired surrogates included; empty for other kinds.
  std::u16string units;
  std::size_t end = 0;
};

/// White space that may be between tokens: that of JSON, or spaces and tabs only.
enum class TwinSpace { kAll, kBlanks };

/// Reads the JSON value at `from`, which white space may precede. The text after it is not read.
///
/// RapidJSON decides what is JSON, the C library converts numbers, because RapidJSON 1.1 accepts
/// 17976931348623158e308 as a finite number. Where our parser has another rule, the twin adds it:
/// - an escaped surrogate without its other half is kept as a unit; RapidJSON rejects a high one;
/// - line breaks are white space only if `space` says so; for RapidJSON they always are;
/// - containers nest at most `depthLimit` deep; RapidJSON has no limit;
/// - a zero may have any exponent; RapidJSON rejects large ones;
/// - of equal keys the last one counts; RapidJSON reports all of them.
std::optional<TwinValue> parseByRapidJson(std::u16string_view text, std::size_t from,
                                          TwinSpace space, std::size_t depthLimit);

}  // namespace quenlith::oracle
