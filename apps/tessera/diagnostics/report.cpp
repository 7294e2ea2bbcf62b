#include "tessera/diagnostics/report.hpp"

#include <unistd.h>

#include "tessera/diagnostics/StatusLine.hpp"
#include "tessera/diagnostics/writeAll.hpp"

namespace tessera::diagnostics {

void report(std::string_view message) noexcept {
  const StatusPause pause;
  // Nobody can be told that a message cannot be written.
  if (writeAll(STDERR_FILENO, message) == 0) static_cast<void>(writeAll(STDERR_FILENO, "\n"));
}

}  // namespace tessera::diagnostics
