#pragma once

#include "foundation/core/except/IException.hpp"
#include "quenlith/export/model.hpp"

namespace foundation::core::except {

/// An exception whose message is meant for the user of a program.
class QUENLITH_MODEL_EXPORT IUserException : public virtual IException {
 public:
  ~IUserException() override;
};

}  // namespace foundation::core::except
