#include <cstdio>
#include <cstdlib>
#include <string>

#include "quenlith/elf/LibraryName.hpp"
#include "quenlith/elf/loadedLibraries.hpp"

namespace {

namespace elf = quenlith::elf;

// Ends the process when the host runs another framework, which has loaded a bundle that was built
// against this one. The two have the same symbol names: each would call functions of the other, and
// the process would crash later, without a message. The loader has no way to refuse the library at
// this point, and an exception would leave the loader locked.
//
// Runs before the other initializers of this library and, since the bundle is linked with this
// library, before those of the bundle.
[[gnu::constructor(101)]] void requireOneFramework() {
  const std::string other = elf::loadedFramework().value_or("");
  if (elf::LibraryName(other.substr(other.rfind('/') + 1)).framework() !=
      elf::Framework::kInstalled) {
    return;
  }
  const std::string own = elf::fileOfCode(reinterpret_cast<const void*>(&requireOneFramework));
  // Not to std::cerr, which nothing may have initialized yet.
  std::fprintf(stderr,
               "%s: this is the embedded framework, needed by a bundle that was built against it, "
               "and this process runs another framework, %s: bundles of one cannot run in the "
               "other; build the bundle against the framework of this program\n",
               own.c_str(), other.c_str());
  std::abort();
}

}  // namespace
