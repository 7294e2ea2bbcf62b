#pragma once

#include "fl/i18n/ustring.hpp"

namespace quenlith::build::markup::code::line {

/// Returns `line` with every "%%\\" replaced by "%%", from left to right. The replacements are not
/// searched again.
fl::i18n::ustring normaliseLine(const fl::i18n::ustring& line);

}  // namespace quenlith::build::markup::code::line
