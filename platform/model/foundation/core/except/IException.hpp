#pragma once

#include <string>

#include "fl/i18n/ustring.hpp"
#include "quenlith/export/model.hpp"

namespace foundation::core::except {

/// The base of all exceptions of the host libraries.
class QUENLITH_MODEL_EXPORT IException {
 public:
  virtual ~IException();
  /// The message in UTF-16.
  virtual fl::i18n::ustring GetUnicodeMessageTxt() const = 0;
};

}  // namespace foundation::core::except
