#pragma once

#include <string>
#include <string_view>

namespace fl::i18n {

using ustring = std::u16string;
ustring utf8_to_ustring(std::string_view text);
std::string ustring_to_utf8(std::u16string_view text);

}  // namespace fl::i18n
