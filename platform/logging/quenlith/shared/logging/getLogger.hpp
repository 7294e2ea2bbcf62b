#pragma once

#include "foundation/log/basic_diagnostic_logger.hpp"
#include "quenlith/export/logging.hpp"

namespace quenlith::shared::logging {

/// Returns the one logger of the process. It lives until the process ends.
QUENLITH_LOGGING_EXPORT foundation::log::basic_diagnostic_logger<char>& getLogger() noexcept;

}  // namespace quenlith::shared::logging
