#pragma once

#include <string>

#include "foundation/core/except/IException.hpp"
#include "quenlith/export/model.hpp"

namespace foundation::core::except {

/// An exception whose message is identified by a catalog and a key.
class QUENLITH_MODEL_EXPORT IMsgIDException : public virtual IException {
 public:
  ~IMsgIDException() override;
  virtual std::string getCatalog() const = 0;
  virtual std::string getKey() const = 0;
};

}  // namespace foundation::core::except
