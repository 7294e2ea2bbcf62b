#pragma once

#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace fl::i18n::twin {

/// UTF-8 decoded by ICU: each maximal subpart of an ill-formed sequence is one U+FFFD.
struct Decoded {
  std::u16string text;
  /// Offset in bytes of the first ill-formed sequence.
  std::optional<std::size_t> firstInvalid;
};
Decoded decodeUtf8(std::string_view bytes);

/// Returns UTF-8 as ICU writes it: each unpaired surrogate is one U+FFFD.
std::string encodeUtf8(std::u16string_view text);

/// Random bytes and texts: whole characters of every length between damaged ones and runs of
/// ASCII of any length.
std::string randomBytes(std::mt19937_64& random);
std::u16string randomUnits(std::mt19937_64& random);

}  // namespace fl::i18n::twin
