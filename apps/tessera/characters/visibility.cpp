#include "tessera/characters/visibility.hpp"

#include <utf8proc.h>

#include <string_view>

namespace tessera::characters {
namespace {

constexpr char32_t kNonJoiner = 0x200C;
constexpr char32_t kJoiner = 0x200D;
constexpr char32_t kTextSelector = 0xFE0E;
constexpr char32_t kEmojiSelector = 0xFE0F;
constexpr char32_t kBlankBraille = 0x2800;
constexpr char32_t kWideSpace = 0x3000;

/// Returns whether an emoji selector makes a key of a telephone of `character`.
bool isKeycapBase(char32_t character) noexcept {
  return (character >= U'0' && character <= U'9') || character == U'#' || character == U'*';
}

}  // namespace

bool isInvisible(char32_t character) noexcept {
  // Most text.
  if (character >= 0x20 && character < 0x7F) return false;
  const auto& properties = *utf8proc_get_property(static_cast<utf8proc_int32_t>(character));
  switch (properties.category) {
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_CF:
    case UTF8PROC_CATEGORY_CN:
    case UTF8PROC_CATEGORY_CO:
    case UTF8PROC_CATEGORY_CS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return true;
    default:
      return properties.ignorable || character == kBlankBraille;
  }
}

bool looksLikeBlank(char32_t character) noexcept {
  if (character == U' ' || character == kWideSpace) return false;
  const auto& properties = *utf8proc_get_property(static_cast<utf8proc_int32_t>(character));
  return properties.category == UTF8PROC_CATEGORY_ZS;
}

bool isPartOfShape(char32_t character, char32_t last) noexcept {
  switch (character) {
    case kEmojiSelector:
      if (isKeycapBase(last)) return true;
      break;
    case kJoiner:
      if (last == kEmojiSelector) return true;
      break;
    case kNonJoiner:
    case kTextSelector:
      break;
    default:
      return false;
  }
  return last >= 0x80 && !isInvisible(last);
}

std::string nameOf(char32_t character) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string digits;
  for (char32_t rest = character; rest != 0 || digits.size() < 4; rest >>= 4) {
    digits.insert(digits.begin(), kHex[rest & 0xF]);
  }
  return "U+" + digits;
}

}  // namespace tessera::characters
