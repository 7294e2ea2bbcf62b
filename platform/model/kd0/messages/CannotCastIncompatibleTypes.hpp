#pragma once

#include <string>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "kd0/messages/TypeMessage.hpp"

namespace kd0::messages {

/// A value that was read is to be used as a model element, but its type is none.
class CannotCastIncompatibleTypes : public TypeMessage {
 public:
  explicit CannotCastIncompatibleTypes(fl::i18n::ustring typeName)
      : TypeMessage(std::move(typeName)) {}
  std::string getKey() const { return "CannotCastIncompatibleTypes"; }
  fl::i18n::ustring getText() const {
    return u"A value of type " + qualifiedName + u" cannot be used as a model element.";
  }
};

}  // namespace kd0::messages
