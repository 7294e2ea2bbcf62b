#pragma once

#include <map>
#include <string>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Value.hpp"

namespace quenlith::syntax {

class Marker {
 public:
  Marker(const fl::i18n::ustring& text);
  fl::i18n::ustring getId() const;
  fl::i18n::ustring getElement() const;
  fl::i18n::ustring getType() const;
  std::map<std::string, foundation::json::Value> getData() const;
  fl::i18n::ustring toString() const;
  bool operator==(Marker other) const;
};

}  // namespace quenlith::syntax
