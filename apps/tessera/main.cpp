#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <string_view>

#include "tessera/commands/status.hpp"
#include "tessera/host.hpp"

// Linked to the C library alone, so that the program starts at once.

namespace {

using tessera::commands::kFine;
using tessera::commands::kUnusable;

constexpr std::string_view kVersion = "tessera " TESSERA_VERSION "\n";

bool asksForVersion(int argumentCount, char** arguments) noexcept {
  return argumentCount == 2 && std::string_view(arguments[1]) == "--version";
}

bool writeVersion() noexcept {
  return ::write(STDOUT_FILENO, kVersion.data(), kVersion.size()) ==
         static_cast<ssize_t>(kVersion.size());
}

/// Runs the library that does the work. It stays open: the program ends with it.
int runHost(int argumentCount, char** arguments) noexcept {
  if (void* const host = ::dlopen(TESSERA_HOST, RTLD_LAZY | RTLD_GLOBAL)) {
    if (void* const run = ::dlsym(host, "tesseraRun")) {
      return reinterpret_cast<decltype(&tesseraRun)>(run)(argumentCount, arguments);
    }
  }
  std::fprintf(stderr, "tessera: error: %s; install the program again\n", ::dlerror());
  return kUnusable;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  // The host says what is wrong where the version cannot be written.
  if (asksForVersion(argumentCount, arguments) && writeVersion()) return kFine;
  return runHost(argumentCount, arguments);
}
