#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "TextTwin.hpp"
#include "fl/i18n/ustring.hpp"
#include "fl/i18n/utf8.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"

namespace quenlith::fuzz {

using fl::i18n::ustring;

namespace {

void checkBytes(std::string_view bytes) {
  const ustring text = fl::i18n::utf8_to_ustring(bytes);
  ustring buffer(bytes.size(), u'\0');
  const auto conversion = fl::i18n::convertUtf8(bytes, buffer.data());
  buffer.resize(conversion.length);
  require(buffer == text, "both ways to convert agree");
  require(fl::i18n::findInvalidUtf8(bytes) == conversion.firstInvalid, "validation agrees");
  const fl::i18n::twin::Decoded twin = fl::i18n::twin::decodeUtf8(bytes);
  require(twin.text == text && twin.firstInvalid == conversion.firstInvalid, "ICU decodes alike");
  const std::string back = fl::i18n::ustring_to_utf8(text);
  require((back == bytes) == !conversion.firstInvalid, "only well-formed bytes come back");
}

void checkUnits(const ustring& text) {
  const std::string bytes = fl::i18n::ustring_to_utf8(text);
  require(bytes.size() >= text.size(), "never fewer bytes than units");
  require(bytes == fl::i18n::twin::encodeUtf8(text), "ICU encodes alike");
  const ustring back = fl::i18n::utf8_to_ustring(bytes);
  require(back.size() == text.size(), "a bad unit becomes one unit");
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isSurrogate = (text[at] & 0xF800) == 0xD800;
    require(back[at] == text[at] || (isSurrogate && back[at] == u'\uFFFD'), "units come back");
  }
}

}  // namespace

void checkText(std::string_view input) {
  checkBytes(input);
  ustring units(input.size() / sizeof(char16_t), u'\0');
  if (!units.empty()) std::memcpy(units.data(), input.data(), units.size() * sizeof(char16_t));
  checkUnits(units);
}

}  // namespace quenlith::fuzz
