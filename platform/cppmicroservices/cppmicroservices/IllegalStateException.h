#pragma once

#include <stdexcept>
#include <string>

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices {

/// The exception for the use of an object that is no longer valid.
class QUENLITH_CPPMICROSERVICES_EXPORT IllegalStateException final : public std::runtime_error {
 public:
  explicit IllegalStateException(std::string message);
  ~IllegalStateException() override;
};

}  // namespace cppmicroservices
