#include "fl/i18n/ustring.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

#include "fl/i18n/utf16.hpp"
#include "fl/i18n/utf8.hpp"

namespace fl::i18n {

namespace {

// A string cannot grow without its new part being written twice, so the text goes through a
// buffer on the stack: the copy out of the first-level cache is the cheaper one.
constexpr std::size_t kBufferUnits = 1024;

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Length of the longest part of `text` that fits the buffer and divides no sequence. Where three
// continuation bytes stand before the cut, the next byte begins a sequence of its own anyway.
std::size_t chunkLength(std::string_view text) {
  if (text.size() <= kBufferUnits) {
    return text.size();
  }
  std::size_t length = kBufferUnits;
  while (length > kBufferUnits - 3 && isContinuation(text[length])) {
    --length;
  }
  return length;
}

}  // namespace

ustring utf8_to_ustring(std::string_view text) {
  ustring result;
  result.reserve(text.size());
  std::array<char16_t, kBufferUnits> buffer;
  while (!text.empty()) {
    const std::size_t length = chunkLength(text);
    result.append(buffer.data(), convertUtf8(text.substr(0, length), buffer.data()).length);
    text.remove_prefix(length);
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
