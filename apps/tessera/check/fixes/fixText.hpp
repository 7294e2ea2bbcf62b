#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/check/fixes/FixedText.hpp"

namespace tessera::check::fixes {

/// Checks a text.
using Check = std::function<catalogue::CheckedFile(const std::string& bytes)>;

/// The result of fixing a text.
struct FixResult {
  /// The diagnostics that are left.
  catalogue::CheckedFile checked;
  /// How many fixes were applied.
  std::size_t count = 0;
};

/// Applies the fixes that `check` finds in `text`, and again those that it finds in the result,
/// until there are none: fixes that overlap are made one after the other. A fix after which there
/// would be a failure more of any kind is not made; if that is so only together with earlier fixes,
/// those are made. Calls `check` a limited number of times, however many fixes there are.
FixResult fixText(FixedText& text, const Check& check);

}  // namespace tessera::check::fixes
