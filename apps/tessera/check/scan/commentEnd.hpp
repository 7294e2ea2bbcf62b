#pragma once

#include <string_view>

namespace tessera::check::scan {

/// Returns the end of a block comment that `text` begins with, after blanks: "*/", "*)", "-->" or
/// "-}", of which "*" and "-" may be repeated as markers allow. Empty if it begins with none.
std::u16string_view commentEndAt(std::u16string_view text);

/// Returns the start of the block comment that ends with `commentEnd`.
std::u16string_view openerOf(std::u16string_view commentEnd);

}  // namespace tessera::check::scan
