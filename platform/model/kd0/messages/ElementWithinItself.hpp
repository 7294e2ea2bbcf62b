#pragma once

#include <string>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "kd0/messages/TypeMessage.hpp"

namespace kd0::messages {

/// An element cannot be contained in itself or in an element within it.
class ElementWithinItself : public TypeMessage {
 public:
  explicit ElementWithinItself(fl::i18n::ustring qualifiedName)
      : TypeMessage(std::move(qualifiedName)) {}
  std::string getKey() const { return "ElementWithinItself"; }
  fl::i18n::ustring getText() const {
    return u"An element of type " + qualifiedName + u" cannot be contained in itself.";
  }
};

}  // namespace kd0::messages
