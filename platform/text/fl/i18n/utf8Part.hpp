#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace fl::i18n {

/// What the conversion of the first part of a text did.
struct Utf8Part {
  std::size_t bytesRead = 0;
  std::size_t unitsWritten = 0;

  /// Offset in bytes of the first ill-formed sequence.
  std::optional<std::size_t> firstInvalid;
};

/// The most bytes of a sequence that can follow its first one.
inline constexpr std::size_t kMaxUtf8Trail = 3;

/// Converts like `convertUtf8` the sequences of `text` that begin before `stop`, at most the size
/// of the text. They are read to their ends, so no sequence is divided.
///
/// `output` needs space for `stop + kMaxUtf8Trail` units.
Utf8Part convertUtf8Part(std::string_view text, std::size_t stop, char16_t* output) noexcept;

}  // namespace fl::i18n
