#pragma once

#include <string_view>

#include "fl/i18n/ustring.hpp"

namespace quenlith::fuzz {

/// Returns `input` as text: UTF-8, in which the ill-formed sequences become, in turn, the first and
/// the second half of a surrogate pair.
inline fl::i18n::ustring textOf(std::string_view input) {
  fl::i18n::ustring text = fl::i18n::utf8_to_ustring(input);
  bool high = false;
  for (char16_t& unit : text) {
    if (unit != u'\uFFFD') continue;
    high = !high;
    unit = high ? char16_t{0xD83D} : char16_t{0xDE00};
  }
  return text;
}

}  // namespace quenlith::fuzz
