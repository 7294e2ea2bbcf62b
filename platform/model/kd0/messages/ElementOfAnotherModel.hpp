#pragma once

#include <string>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "kd0/messages/TypeMessage.hpp"

namespace kd0::messages {

/// An element cannot be added to a collection of another model.
class ElementOfAnotherModel : public TypeMessage {
 public:
  explicit ElementOfAnotherModel(fl::i18n::ustring qualifiedName)
      : TypeMessage(std::move(qualifiedName)) {}
  std::string getKey() const { return "ElementOfAnotherModel"; }
  fl::i18n::ustring getText() const {
    return u"An element of type " + qualifiedName +
           u" belongs to another model than the collection.";
  }
};

}  // namespace kd0::messages
