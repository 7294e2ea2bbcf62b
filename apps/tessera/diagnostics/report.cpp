#include "tessera/diagnostics/report.hpp"

#include <cstdio>

#include "tessera/diagnostics/StatusLine.hpp"

namespace tessera::diagnostics {

void report(std::string_view message) noexcept {
  const StatusPause pause;
  std::fwrite(message.data(), 1, message.size(), stderr);
  std::fputc('\n', stderr);
}

}  // namespace tessera::diagnostics
