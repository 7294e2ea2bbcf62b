#pragma once

#include <memory>

#include "cppmicroservices/Framework.h"
#include "quenlith/export/framework.hpp"

namespace foundation::cppmicroservices {

/// Returns the framework that was set last; null when there is none. Thread-safe.
QUENLITH_FRAMEWORK_EXPORT std::shared_ptr<::cppmicroservices::Framework> getFramework() noexcept;

/// Makes `framework` the one that `getFramework` returns. A host calls this after starting the
/// framework, and with null before stopping it. Thread-safe; pointers to the previous framework
/// stay valid.
QUENLITH_FRAMEWORK_EXPORT void setFramework(
    std::shared_ptr<::cppmicroservices::Framework> framework) noexcept;

}  // namespace foundation::cppmicroservices
