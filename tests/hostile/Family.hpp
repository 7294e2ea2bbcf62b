#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "fl/i18n/ustring.hpp"

namespace hostile {

/// Texts of one shape, of any size, which are made to take much time, memory or stack.
struct Family {
  std::string name;
  /// Returns a text of about `size` code units, lines ending in LF.
  std::function<fl::i18n::ustring(std::size_t size)> make;
};

/// The largest number that `$` is replaced with has this many digits.
inline constexpr std::size_t kDigits = 8;

/// `head`, then `part` again and again, then `tail`. In `part`, each `$` is the number of the
/// repetition, with `kDigits` digits, and each `^` the number of repetitions that follow.
Family repeated(std::string name, std::u16string_view head, std::u16string_view part,
                std::u16string_view tail = {});

/// `before`, then `unit` again and again, then `after`.
Family run(std::string name, std::u16string_view before, char16_t unit,
           std::u16string_view after = {});

}  // namespace hostile
