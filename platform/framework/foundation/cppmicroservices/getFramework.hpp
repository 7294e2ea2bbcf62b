#pragma once

#include <cstdint>
#include <memory>

#include "cppmicroservices/Framework.h"
#include "quenlith/export/framework.hpp"

namespace foundation::cppmicroservices {

/// Returns the running framework of the process; null when there is none. Any thread.
QUENLITH_FRAMEWORK_EXPORT std::shared_ptr<::cppmicroservices::Framework> getFramework() noexcept;

/// Makes `framework` the running one. A host calls it after the framework's start, and with
/// null before its stop. Any thread; who holds the one before keeps it.
QUENLITH_FRAMEWORK_EXPORT void setFramework(
    std::shared_ptr<::cppmicroservices::Framework> framework) noexcept;

/// Returns how many times a framework or null was made the running one. Any thread; who reads it
/// before `getFramework` and finds it the same later knows that the running one is the same.
QUENLITH_FRAMEWORK_EXPORT std::uint64_t frameworkChanges() noexcept;

}  // namespace foundation::cppmicroservices
