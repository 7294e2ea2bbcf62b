#include "tessera/view/openBrowser.hpp"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>
#include <array>
#include <cstdlib>

namespace tessera::view {
namespace {

bool hasDesktop() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment.
  return std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
}

}  // namespace

void openBrowser(const std::string& address) {
  if (!hasDesktop()) return;
  // The shell starts the browser in the background and ends, so that no zombie is left; what the
  // browser says does not belong in this terminal.
  std::string shell = "sh";
  std::string option = "-c";
  std::string command = "xdg-open \"$0\" </dev/null >/dev/null 2>&1 &";
  std::string argument = address;
  const std::array<char*, 5> arguments{shell.data(), option.data(), command.data(), argument.data(),
                                       nullptr};
  pid_t process = 0;
  if (::posix_spawnp(&process, "sh", nullptr, nullptr, arguments.data(), environ) != 0) return;
  ::waitpid(process, nullptr, 0);
}

}  // namespace tessera::view
