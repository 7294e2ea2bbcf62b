#pragma once

namespace foundation::json {

constexpr bool isDigit(char16_t unit) noexcept {
  return unit >= u'0' && unit <= u'9';
}

}  // namespace foundation::json
