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
/// until there are none: fixes that overlap are made one after the other. Stops before fixes after
/// which there would be a failure more of any kind.
FixResult fixText(FixedText& text, const Check& check);

}  // namespace tessera::check::fixes
