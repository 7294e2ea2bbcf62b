#include "tessera/terminal/settings.hpp"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace tessera::terminal {
namespace {

constexpr std::size_t kDefaultColumns = 100;

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

}  // namespace

bool wantsColor(ColorMode mode, int descriptor) {
  if (mode != ColorMode::kAuto) return mode == ColorMode::kAlways;
  return isatty(descriptor) != 0 && environment("NO_COLOR").empty() &&
         environment("TERM") != "dumb";
}

std::size_t columnsOf(int descriptor) {
  winsize size{};
  if (isatty(descriptor) == 0 || ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
    return kDefaultColumns;
  }
  return size.ws_col;
}

}  // namespace tessera::terminal
