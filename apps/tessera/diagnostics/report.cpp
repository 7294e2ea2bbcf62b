#include "tessera/diagnostics/report.hpp"

#include <cstdio>

namespace tessera::diagnostics {

void report(std::string_view message) noexcept {
  std::fwrite(message.data(), 1, message.size(), stderr);
  std::fputc('\n', stderr);
}

}  // namespace tessera::diagnostics
