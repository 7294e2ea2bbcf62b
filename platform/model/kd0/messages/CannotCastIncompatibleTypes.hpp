#pragma once

#include <string>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "kd0/messages/TypeMessage.hpp"

namespace kd0::messages {

/// A value that was read cannot be used as a model element, because its type is not a class of
/// elements.
class CannotCastIncompatibleTypes : public TypeMessage {
 public:
  explicit CannotCastIncompatibleTypes(fl::i18n::ustring qualifiedName)
      : TypeMessage(std::move(qualifiedName)) {}
  std::string getKey() const { return "CannotCastIncompatibleTypes"; }
  fl::i18n::ustring getText() const {
    return u"A value of type " + qualifiedName + u" cannot be used as a model element.";
  }
};

}  // namespace kd0::messages
