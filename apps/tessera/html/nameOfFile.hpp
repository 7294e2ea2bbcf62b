#pragma once

#include <string_view>

namespace tessera::html {

/// Returns how the page names the file `path`.
constexpr std::string_view nameOfFile(std::string_view path) noexcept {
  return path == "-" ? "standard input" : path;
}

}  // namespace tessera::html
