#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "quenlith/export/text.hpp"

namespace fl::i18n {

/// The largest number of UTF-8 bytes per 16-bit code unit.
inline constexpr std::size_t kMaxUtf8BytesPerUnit = 3;

/// Writes `text` as UTF-8 to `output`, unpaired surrogates as U+FFFD, and returns the number of
/// bytes written.
///
/// `output` must have room for `kMaxUtf8BytesPerUnit * text.size()` bytes, any of which may be
/// overwritten. Does not allocate.
QUENLITH_TEXT_EXPORT std::size_t convertUtf16(std::u16string_view text, char* output) noexcept;

/// Appends `text` as UTF-8 to `output`, unpaired surrogates as U+FFFD.
QUENLITH_TEXT_EXPORT void appendUtf8(std::string& output, std::u16string_view text);

}  // namespace fl::i18n
