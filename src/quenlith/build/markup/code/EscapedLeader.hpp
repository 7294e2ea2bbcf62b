#pragma once

#include <string_view>

#include "fl/i18n/ustring.hpp"

namespace quenlith::build::markup::code {

/// Tells whether the author escaped a marker's leader in `line`: whether "%%\\" stands in it.
bool hasEscapedLeader(std::u16string_view line) noexcept;

/// Returns `line` with the backslash of each "%%\\" left out, from left to right; what comes of
/// that is not looked at again.
fl::i18n::ustring withoutEscapes(const fl::i18n::ustring& line);

}  // namespace quenlith::build::markup::code
