#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "quenlith/export/text.hpp"

namespace fl::i18n {

/// What a bulk conversion to 16-bit code units did.
struct Utf8Conversion {
  /// Count of 16-bit code units written.
  std::size_t length = 0;

  /// Offset in bytes of the first ill-formed sequence; empty when there is none.
  std::optional<std::size_t> firstInvalid;
};

/// Writes `text` as 16-bit code units to `output`, ill-formed sequences as U+FFFD each, like
/// `utf8_to_ustring`, and says where the first of them is: validation and conversion in one pass.
///
/// `output` must have room for as many units as `text` has bytes; what lies behind the written
/// units may be overwritten up to there. Does not allocate.
QUENLITH_TEXT_EXPORT Utf8Conversion convertUtf8(std::string_view text, char16_t* output) noexcept;

/// Returns the offset in bytes of the first ill-formed UTF-8 sequence, or nothing.
QUENLITH_TEXT_EXPORT std::optional<std::size_t> findInvalidUtf8(std::string_view text) noexcept;

}  // namespace fl::i18n
