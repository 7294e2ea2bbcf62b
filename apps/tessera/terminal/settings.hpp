#pragma once

#include <cstddef>
#include <optional>

namespace tessera::terminal {

/// When text is coloured. kAuto: if it goes to a terminal that shows colours, unless the
/// environment variable NO_COLOR is set and not empty.
enum class ColorMode { kAuto, kAlways, kNever };

/// Returns whether text that is written to the open file `descriptor` is coloured.
bool wantsColor(ColorMode mode, int descriptor);

/// Returns how many columns the terminal has that `descriptor` is; nothing if it is not one or does
/// not tell.
std::optional<std::size_t> terminalColumns(int descriptor);

/// Returns whether the locale of the environment uses UTF-8.
bool usesUtf8();

/// Returns how many columns a row written to the open file `descriptor` may have: the width of the
/// terminal or, if it is not a terminal or does not tell, 100.
std::size_t columnsOf(int descriptor);

}  // namespace tessera::terminal
