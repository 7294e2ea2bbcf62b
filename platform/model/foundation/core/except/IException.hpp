#pragma once

#include <string>

#include "fl/i18n/ustring.hpp"
#include "quenlith/export/model.hpp"

namespace foundation::core::except {

/// What every exception of the host libraries can be caught as.
class QUENLITH_MODEL_EXPORT IException {
 public:
  virtual ~IException();
  /// The message in UTF-16.
  virtual fl::i18n::ustring GetUnicodeMessageTxt() const = 0;
};

/// An exception whose message is meant for the user of a program.
class QUENLITH_MODEL_EXPORT IUserException : public virtual IException {
 public:
  ~IUserException() override;
};

/// An exception whose message stands in a catalog under a key.
class QUENLITH_MODEL_EXPORT IMsgIDException : public virtual IException {
 public:
  ~IMsgIDException() override;
  virtual std::string getCatalog() const = 0;
  virtual std::string getKey() const = 0;
};

}  // namespace foundation::core::except
