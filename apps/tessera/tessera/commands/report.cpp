#include "tessera/commands/report.hpp"

#include <cstdio>

namespace tessera::commands {

void report(std::string_view message) noexcept {
  std::fwrite(message.data(), 1, message.size(), stderr);
  std::fputc('\n', stderr);
}

}  // namespace tessera::commands
