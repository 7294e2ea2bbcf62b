#pragma once

#include <string>
#include <utility>

#include "fl/i18n/ustring.hpp"
#include "foundation/core/except/IMsgIDException.hpp"
#include "foundation/core/except/IUserException.hpp"

namespace foundation::core::except {

/// An exception of the host libraries, whose message is identified by a catalog and a key.
///
/// `Message` has `getCatalog()`, `getKey()`, `getArguments()` and `getText()`; `StandardBase`
/// is the standard exception that it can be caught as.
template <class Message, class StandardBase>
class Exception : public IMsgIDException, public IUserException, public StandardBase {
 public:
  explicit Exception(Message message)
      : message(std::move(message)),
        // The member: the parameter was moved from.
        narrowText(fl::i18n::ustring_to_utf8(this->message.getText())) {}

  const Message& getMessage() const noexcept { return message; }
  /// The message in UTF-8.
  const char* what() const noexcept override { return narrowText.c_str(); }
  fl::i18n::ustring GetUnicodeMessageTxt() const override { return message.getText(); }
  std::string getCatalog() const override { return message.getCatalog(); }
  std::string getKey() const override { return message.getKey(); }

 private:
  Message message;
  std::string narrowText;
};

}  // namespace foundation::core::except
