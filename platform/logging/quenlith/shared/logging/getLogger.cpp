#include "quenlith/shared/logging/getLogger.hpp"

namespace quenlith::shared::logging::detail {

using Logger = foundation::log::basic_diagnostic_logger<char>;

// Never destroyed: components may still log while the process ends.
Logger& sharedLogger = *new Logger;

}  // namespace quenlith::shared::logging::detail
