#include "tessera/host/describeFault.hpp"

#include <cstddef>

namespace tessera::host {
namespace {

constexpr std::string_view kFactoryThrew = "a service factory threw an exception: ";
constexpr std::string_view kRemedyMark = "; ";

void removePrefix(std::string_view& text, std::string_view prefix) {
  if (text.starts_with(prefix)) text.remove_prefix(prefix.size());
}

}  // namespace

diagnostics::Problem describeFault(const std::string& file, const std::string& location,
                                   std::string_view message) {
  removePrefix(message, kFactoryThrew);
  removePrefix(message, location + ": ");
  removePrefix(message, file + ": ");
  const std::size_t mark = message.rfind(kRemedyMark);
  // An installed framework names no remedy.
  if (mark == std::string_view::npos) {
    return {.file = file,
            .place = {},
            .what = std::string(message),
            .remedy = "correct the bundle, or leave it out"};
  }
  return {.file = file,
          .place = {},
          .what = std::string(message.substr(0, mark)),
          .remedy = std::string(message.substr(mark + kRemedyMark.size()))};
}

}  // namespace tessera::host
