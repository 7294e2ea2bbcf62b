#include "tessera/terminal/settings.hpp"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>
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

std::optional<std::size_t> terminalColumns(int descriptor) {
  winsize size{};
  if (isatty(descriptor) == 0 || ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
    return std::nullopt;
  }
  return size.ws_col;
}

bool usesUtf8() {
  // The first variable that is set decides, as in setlocale().
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    std::string locale(environment(name));
    if (locale.empty()) continue;
    std::ranges::transform(locale, locale.begin(), [](unsigned char letter) {
      return static_cast<char>(std::tolower(letter));
    });
    return locale.find("utf-8") != locale.npos || locale.find("utf8") != locale.npos;
  }
  return false;
}

std::size_t columnsOf(int descriptor) {
  return terminalColumns(descriptor).value_or(kDefaultColumns);
}

}  // namespace tessera::terminal
