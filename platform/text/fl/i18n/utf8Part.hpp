#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace fl::i18n {

/// The result of converting the first part of a text.
struct Utf8Part {
  std::size_t bytesRead = 0;
  std::size_t unitsWritten = 0;

  /// Offset in bytes of the first ill-formed sequence; empty when there is none.
  std::optional<std::size_t> firstInvalid;
};

/// The largest number of bytes that can follow the first byte of a sequence.
inline constexpr std::size_t kMaxUtf8Trail = 3;

/// Like `convertUtf8`, but converts only the sequences that begin before `stop`, which is at most
/// the size of `text`. The last one is read to its end even if that is past `stop`.
///
/// `output` must have room for `stop + kMaxUtf8Trail` units.
Utf8Part convertUtf8Part(std::string_view text, std::size_t stop, char16_t* output) noexcept;

}  // namespace fl::i18n
