#pragma once

#include <array>
#include <string>
#include <utility>

#include "fl/i18n/ustring.hpp"

namespace kd0::messages {

/// A message of the model library with one argument: the qualified name of a type.
class TypeMessage {
 public:
  std::string getCatalog() const { return "kd0:messages"; }
  std::array<fl::i18n::ustring, 1> getArguments() const { return {qualifiedName}; }

 protected:
  explicit TypeMessage(fl::i18n::ustring qualifiedName) : qualifiedName(std::move(qualifiedName)) {}

  fl::i18n::ustring qualifiedName;
};

}  // namespace kd0::messages
