#include "tessera/check/scan/markerText.hpp"

#include <utf8proc.h>

#include <algorithm>

#include "fl/i18n/ustring.hpp"
#include "tessera/diagnostics/terminalText.hpp"

namespace tessera::check::scan {
namespace {

constexpr std::size_t kMaxQuotedUnits = 60;
constexpr std::size_t kHeadUnits = 40;
constexpr std::size_t kTailUnits = 15;
// For Unicode they are format characters.
constexpr char16_t kZeroWidthSpace = 0x200B;
constexpr char16_t kZeroWidthNoBreakSpace = 0xFEFF;

bool isBareNameUnit(char16_t unit) {
  const auto lower = static_cast<char16_t>(unit | 0x20U);
  return (unit >= u'0' && unit <= u'9') || (lower >= u'a' && lower <= u'z') || unit == u'_' ||
         unit == u'-' || unit == u'.';
}

bool isTrail(char16_t unit) {
  return (unit & 0xFC00) == 0xDC00;
}

/// Returns the longest view up to `size` that does not end within a surrogate pair.
std::u16string_view headOf(std::u16string_view text, std::size_t size) {
  return text.substr(0, isTrail(text[size]) ? size - 1 : size);
}

std::u16string_view tailOf(std::u16string_view text, std::size_t size) {
  const std::size_t begin = text.size() - size;
  return text.substr(isTrail(text[begin]) ? begin + 1 : begin);
}

}  // namespace

bool isOtherSpace(char16_t unit) {
  return unit >= 0x80 && (utf8proc_category(unit) == UTF8PROC_CATEGORY_ZS ||
                          unit == kZeroWidthSpace || unit == kZeroWidthNoBreakSpace);
}

std::u16string_view nameAtStartOf(std::u16string_view text) {
  const auto end = std::ranges::find_if_not(text, isBareNameUnit);
  return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

std::string quoted(std::u16string_view text) {
  if (text == u"\"") return "'\"'";
  if (text.size() <= kMaxQuotedUnits) return diagnostics::quotedText(text);
  std::u16string shortened(headOf(text, kHeadUnits));
  shortened += u"...";
  shortened += tailOf(text, kTailUnits);
  return diagnostics::quotedText(shortened);
}

std::string nameOf(const quenlith::syntax::Marker& marker) {
  return marker.idView().empty() ? "without an id" : quoted(marker.idView());
}

std::string plainText(std::u16string_view text) {
  return diagnostics::terminalText(fl::i18n::ustring_to_utf8(text));
}

}  // namespace tessera::check::scan
