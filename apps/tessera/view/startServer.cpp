#include <dlfcn.h>

#include <filesystem>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/view/Server.hpp"

namespace tessera::view {
namespace {

[[noreturn]] void fail(const std::string& subject, const std::string& what,
                       const std::string& remedy) {
  throw diagnostics::ProblemError({.file = subject, .place = {}, .what = what, .remedy = remedy});
}

/// Returns the function of the library. It is loaded when it is needed: linked to the program, the
/// libraries that it depends on would add 3 to 4 ms to every start.
StartServer* loadServer() {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  const std::string file =
      (program.parent_path() / TESSERA_LIBRARY_FOLDER / TESSERA_SERVER_LIBRARY).string();
  void* const library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) fail(file, ::dlerror(), "install the program as a whole");
  auto* const start = reinterpret_cast<StartServer*>(::dlsym(library, kStartServerName));
  if (start == nullptr) fail(file, ::dlerror(), "install the program as a whole");
  return start;
}

}  // namespace

std::unique_ptr<Server> startServer(Site& site, std::uint16_t port) {
  std::unique_ptr<Server> server(loadServer()(&site, port));
  if (server) return server;
  fail("127.0.0.1:" + std::to_string(port), "this port cannot be used",
       "leave out --port, or name another port");
}

}  // namespace tessera::view
