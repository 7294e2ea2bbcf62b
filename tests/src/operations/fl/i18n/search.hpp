#pragma once

#include <cstddef>
#include <string_view>

namespace fl::i18n {

// An addition, see docs/architecture.md: the one vector search of the tree.
template <char16_t... units>
bool containsAny(std::u16string_view text) noexcept;
template <char16_t first, char16_t second>
std::size_t findPair(std::u16string_view text, std::size_t from = 0) noexcept;

}  // namespace fl::i18n
