#pragma once

#include "foundation/log/basic_diagnostic_logger.hpp"
#include "quenlith/export/logging.hpp"

namespace quenlith::shared::logging {

namespace detail {
// Initialized when the library is loaded, and not in a function-local static: calls need no guard
// check.
QUENLITH_LOGGING_EXPORT extern foundation::log::basic_diagnostic_logger<char>& sharedLogger;
}  // namespace detail

/// Returns the one logger of the process. It lives until the process ends.
inline foundation::log::basic_diagnostic_logger<char>& getLogger() noexcept {
  return detail::sharedLogger;
}

}  // namespace quenlith::shared::logging
