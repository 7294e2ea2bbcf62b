#pragma once

#include <cstddef>
#include <cstring>

namespace document::kdzero {

/// Copies `count` code units from `from` to `to`; the ranges must not overlap.
///
/// Copies in blocks of a constant size, which compile to single moves; the last block may copy some
/// units a second time. Texts of nodes are short: a call of memcpy would cost as much as the copy.
inline void copyCodeUnits(char16_t* to, const char16_t* from, std::size_t count) noexcept {
  constexpr std::size_t kVector = 8;
  constexpr std::size_t kHalf = 4;
  if (count >= kVector) {
    for (std::size_t at = 0; at + kVector < count; at += kVector) {
      std::memcpy(to + at, from + at, kVector * sizeof(char16_t));
    }
    std::memcpy(to + count - kVector, from + count - kVector, kVector * sizeof(char16_t));
  } else if (count >= kHalf) {
    std::memcpy(to, from, kHalf * sizeof(char16_t));
    std::memcpy(to + count - kHalf, from + count - kHalf, kHalf * sizeof(char16_t));
  } else {
    for (std::size_t at = 0; at < count; ++at) to[at] = from[at];
  }
}

}  // namespace document::kdzero
