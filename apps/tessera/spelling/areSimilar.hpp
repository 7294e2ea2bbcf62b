#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessera::spelling {

/// Names longer than this are similar only if they differ in nothing but their case.
inline constexpr std::size_t kMaxNameUnits = 64;

/// Returns `name` with its ASCII letters in lower case.
std::u16string lowered(std::u16string_view name);

/// Returns whether `a` and `b` differ only in the case of ASCII letters, or by one edit: a
/// character inserted, removed or replaced, or two neighbours swapped. False for equal names.
bool areSimilar(std::u16string_view a, std::u16string_view b);

}  // namespace tessera::spelling
