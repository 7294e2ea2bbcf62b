#pragma once

#include <string>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "kd0/messages/TypeMessage.hpp"

namespace kd0::messages {

/// An element is to be contained by itself or by an element within it.
class ElementWithinItself : public TypeMessage {
 public:
  explicit ElementWithinItself(fl::i18n::ustring typeName) : TypeMessage(std::move(typeName)) {}
  std::string getKey() const { return "ElementWithinItself"; }
  fl::i18n::ustring getText() const {
    return u"An element of type " + qualifiedName + u" cannot be contained in itself.";
  }
};

}  // namespace kd0::messages
