#pragma once

#include "fl/i18n/ustring.hpp"

namespace quenlith::build::markup::code::line {

/// Returns `line` with the backslash of each "%%\\" left out, from left to right; what comes of
/// that is not looked at again.
fl::i18n::ustring normaliseLine(const fl::i18n::ustring& line);

}  // namespace quenlith::build::markup::code::line
