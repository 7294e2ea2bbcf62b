#include "fl/i18n/ustring.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

#include "fl/i18n/utf16.hpp"
#include "fl/i18n/utf8Part.hpp"

namespace fl::i18n {

namespace {

// std::u16string::resize would fill the new part with zeros before the conversion overwrites it.
// Converting into a buffer on the stack and appending that is cheaper: the buffer stays in the
// first-level cache.
constexpr std::size_t kPartBytes = 1024;

}  // namespace

ustring utf8_to_ustring(std::string_view text) {
  ustring result;
  result.reserve(text.size());
  std::array<char16_t, kPartBytes + kMaxUtf8Trail> buffer;
  while (!text.empty()) {
    const std::size_t stop = std::min(text.size(), kPartBytes);
    const Utf8Part part = convertUtf8Part(text, stop, buffer.data());
    result.append(buffer.data(), part.unitsWritten);
    text.remove_prefix(part.bytesRead);
  }
  return result;
}

std::string ustring_to_utf8(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  appendUtf8(result, text);
  return result;
}

}  // namespace fl::i18n
