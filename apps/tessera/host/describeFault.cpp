#include "tessera/host/describeFault.hpp"

#include <cerrno>
#include <cstddef>
#include <new>
#include <system_error>

#include "quenlith/elf/describeLoadError.hpp"

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

bool saysOutOfMemory(std::string_view message) noexcept {
  return message.find(std::bad_alloc().what()) != message.npos ||
         message.find("out of memory") != message.npos;
}

std::string remedyForShortage(std::string_view message) {
  const auto says = [message](std::string_view part) { return message.find(part) != message.npos; };
  const auto saysError = [&says](int error) {
    return says(std::generic_category().message(error));
  };
  if (saysError(EMFILE) || saysError(ENFILE)) {
    return "raise the limit of open files (ulimit -n), or close other programs";
  }
  if (quenlith::elf::saysLackOfMemory(message)) {
    return "run fewer workers (-j), or close other programs";
  }
  return "";
}

}  // namespace tessera::host
