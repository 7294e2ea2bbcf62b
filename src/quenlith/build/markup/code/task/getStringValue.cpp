#include "quenlith/build/markup/code/task/getStringValue.hpp"

namespace quenlith::build::markup::code {

fl::i18n::ustring getStringValue(const std::map<std::string, foundation::json::Value>& data,
                                 const std::string& key) {
  const auto entry = data.find(key);
  if (entry == data.end() || !entry->second.is<std::string>()) return {};
  return fl::i18n::utf8_to_ustring(entry->second.get<std::string>());
}

}  // namespace quenlith::build::markup::code
