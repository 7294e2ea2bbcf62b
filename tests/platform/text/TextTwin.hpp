#pragma once

#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace fl::i18n::twin {

/// What a decoder gives that follows the WHATWG encoding standard step by step, byte by byte.
struct Decoded {
  std::u16string text;
  std::optional<std::size_t> firstInvalid;
};
Decoded decodeUtf8(std::string_view bytes);

/// UTF-8 of 16-bit text, unit by unit.
std::string encodeUtf8(std::u16string_view text);

/// Random bytes and texts: whole characters of every length between damaged ones and runs of
/// ASCII of any length.
std::string randomBytes(std::mt19937_64& random);
std::u16string randomUnits(std::mt19937_64& random);

}  // namespace fl::i18n::twin
