#pragma once

#include <map>
#include <string>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Value.hpp"

namespace quenlith::build::markup::code {

/// Returns the string value of the UTF-8 `key` in UTF-16, empty when there is none or when the
/// value is not a string.
fl::i18n::ustring getStringValue(const std::map<std::string, foundation::json::Value>& data,
                                 const std::string& key);

}  // namespace quenlith::build::markup::code
