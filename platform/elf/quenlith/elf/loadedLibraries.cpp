#include "quenlith/elf/loadedLibraries.hpp"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>

#include "quenlith/elf/LibraryName.hpp"

namespace quenlith::elf {
namespace {

int collect(dl_phdr_info* info, std::size_t /*sizeBytes*/, void* files) {
  // The program has an empty name.
  if (*info->dlpi_name != '\0') {
    static_cast<std::vector<std::string>*>(files)->emplace_back(info->dlpi_name);
  }
  return 0;
}

}  // namespace

std::vector<std::string> loadedLibraries() {
  std::vector<std::string> files;
  dl_iterate_phdr(&collect, &files);
  return files;
}

std::optional<std::string> loadedFramework() {
  const std::vector<std::string> files = loadedLibraries();
  const auto found = std::ranges::find_if(files, [](const std::string& file) {
    return LibraryName(std::filesystem::path(file).filename().string()).framework() !=
           Framework::kNone;
  });
  if (found == files.end()) return std::nullopt;
  return *found;
}

std::string fileOfCode(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) == 0 ? "" : info.dli_fname;
}

}  // namespace quenlith::elf
