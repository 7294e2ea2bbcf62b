#pragma once

#include <stdexcept>
#include <string>

#include "cppmicroservices/FrameworkExport.h"

namespace cppmicroservices::service::component {

/// The exception for a component that the Declarative Services runtime cannot make.
class QUENLITH_CPPMICROSERVICES_EXPORT ComponentException final : public std::runtime_error {
 public:
  explicit ComponentException(const std::string& message);
  ~ComponentException() override;
};

}  // namespace cppmicroservices::service::component
