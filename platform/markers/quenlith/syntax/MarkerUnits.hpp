#pragma once

#include <array>

namespace quenlith::syntax {

constexpr bool isDigit(char16_t unit) noexcept {
  return unit >= u'0' && unit <= u'9';
}

constexpr bool isBlank(char16_t unit) noexcept {
  return unit == u' ' || unit == u'\t';
}

/// Which units below U+0080 are allowed in a name.
inline constexpr std::array<bool, 0x80> kNameUnits = [] {
  std::array<bool, 0x80> units{};
  for (char16_t unit = 0; unit < 0x80; ++unit) {
    const auto lower = static_cast<char16_t>(unit | 0x20U);
    units[unit] = (lower >= u'a' && lower <= u'z') || isDigit(unit) || unit == u'_' ||
                  unit == u'-' || unit == u'.';
  }
  return units;
}();

/// Returns whether `unit` is allowed in a name.
constexpr bool isNameUnit(char16_t unit) noexcept {
  return unit >= kNameUnits.size() || kNameUnits[unit];
}

}  // namespace quenlith::syntax
