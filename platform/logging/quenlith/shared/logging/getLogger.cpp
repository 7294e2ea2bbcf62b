#include "quenlith/shared/logging/getLogger.hpp"

namespace quenlith::shared::logging {
namespace {

using Logger = foundation::log::basic_diagnostic_logger<char>;

// Made when the library is loaded: no call pays for a guard, and no two threads race to make
// it. Never destroyed: components may still log while the process ends.
Logger& sharedLogger = *new Logger;

}  // namespace

Logger& getLogger() noexcept {
  return sharedLogger;
}

}  // namespace quenlith::shared::logging
