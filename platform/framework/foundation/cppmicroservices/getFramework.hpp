#pragma once

#include <memory>

#include "cppmicroservices/Framework.h"
#include "quenlith/export/framework.hpp"

namespace foundation::cppmicroservices {

/// Returns the running framework of the process; null when there is none. Thread-safe.
QUENLITH_FRAMEWORK_EXPORT std::shared_ptr<::cppmicroservices::Framework> getFramework() noexcept;

/// Makes `framework` the running one. A host calls it after it has started the framework, and with
/// null before it stops it. Thread-safe; pointers to the previous framework stay valid.
QUENLITH_FRAMEWORK_EXPORT void setFramework(
    std::shared_ptr<::cppmicroservices::Framework> framework) noexcept;

}  // namespace foundation::cppmicroservices
