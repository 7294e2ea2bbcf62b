#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "quenlith/export/text.hpp"

namespace fl::i18n {

/// The greatest count of UTF-8 bytes that one 16-bit code unit can take.
inline constexpr std::size_t kMaxUtf8BytesPerUnit = 3;

/// Writes `text` as UTF-8 to `output`, unpaired surrogates as U+FFFD, and returns the count of
/// bytes written.
///
/// `output` must have room for `kMaxUtf8BytesPerUnit * text.size()` bytes; what lies behind the
/// written bytes may be overwritten up to there. Does not allocate.
QUENLITH_TEXT_EXPORT std::size_t convertUtf16(std::u16string_view text, char* output) noexcept;

/// Appends `text` as UTF-8 to `output`, unpaired surrogates as U+FFFD.
QUENLITH_TEXT_EXPORT void appendUtf8(std::string& output, std::u16string_view text);

}  // namespace fl::i18n
