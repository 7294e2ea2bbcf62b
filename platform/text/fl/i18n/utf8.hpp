#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "quenlith/export/text.hpp"

namespace fl::i18n {

/// The result of a conversion to 16-bit code units.
struct Utf8Conversion {
  /// The number of 16-bit code units written.
  std::size_t length = 0;

  /// Offset in bytes of the first ill-formed sequence; empty when there is none.
  std::optional<std::size_t> firstInvalid;
};

/// Writes `text` as 16-bit code units to `output` and returns where the first ill-formed sequence
/// is: validation and conversion in one pass. Each ill-formed sequence becomes one U+FFFD, as in
/// `utf8_to_ustring`.
///
/// `output` must have room for as many units as `text` has bytes, any of which may be overwritten.
/// Does not allocate.
QUENLITH_TEXT_EXPORT Utf8Conversion convertUtf8(std::string_view text, char16_t* output) noexcept;

/// Returns the offset in bytes of the first ill-formed UTF-8 sequence, or nothing if there is none.
QUENLITH_TEXT_EXPORT std::optional<std::size_t> findInvalidUtf8(std::string_view text) noexcept;

}  // namespace fl::i18n
