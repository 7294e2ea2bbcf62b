#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz/MemoryFile.hpp"
#include "fuzz/framework/BundleHost.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "quenlith/elf/Fault.hpp"
#include "quenlith/elf/readSharedLibrary.hpp"

namespace quenlith::fuzz {

namespace {

bool isPartOf(std::string_view bytes, const std::string& text) {
  return bytes.find(text) != std::string_view::npos;
}

void checkDescription(const elf::SharedLibrary& library, std::string_view bytes) {
  require(isPartOf(bytes, library.soname), "the name of a library is in its file");
  require(std::ranges::all_of(library.needed,
                              [&](const std::string& name) { return isPartOf(bytes, name); }),
          "the libraries that it needs are in its file");
  require(std::ranges::none_of(
              library.searchPaths,
              [](const std::string& path) { return path.empty() || path.find(':') != path.npos; }),
          "search paths are split");
}

}  // namespace

void checkLibrary(std::string_view input) {
  static MemoryFile file;
  file.write(input);
  try {
    checkDescription(elf::readSharedLibrary(file.path()), input);
    for (const std::string& name : elf::readDefinedSymbols(file.path())) {
      require(isPartOf(input, name), "the names of symbols are in the file");
    }
  } catch (const elf::UnusableLibrary& error) {
    require(!error.fault().what.empty() && !error.fault().remedy.empty(), "a fault is described");
  }
  const InstalledBundles installed = installOnce(file.path());
  // The framework looks at the library itself only when it starts a bundle.
  for (const auto& headers : installed.headers) {
    require(headers.count("bundle.symbolic_name") == 1, "a bundle has a name");
  }
}

}  // namespace quenlith::fuzz
