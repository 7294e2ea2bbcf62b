#pragma once

#include <string_view>

namespace fl::i18n {

// An addition, see docs/architecture.md: the one vector search of the tree.
struct Occurrence {
  bool first = false;
  bool second = false;
};
template <char16_t first, char16_t second>
Occurrence findOccurrence(std::u16string_view text) noexcept;

}  // namespace fl::i18n
