#include "quenlith/elf/describeLoadError.hpp"

#include <cxxabi.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

#include "quenlith/elf/readSharedLibrary.hpp"

namespace quenlith::elf {
namespace {

// It may also be there, and cannot be opened.
constexpr std::string_view kNotOpened = ": cannot open shared object file";
constexpr std::string_view kNotFound = ": cannot open shared object file: No such file";
constexpr std::string_view kUndefined = "undefined symbol: ";

// What glibc's loader says when it gets no memory for its tables or for the library.
constexpr std::array kLackOfMemory = std::to_array<std::string_view>(
    {": cannot create HWCAP priorities", ": cannot create RUNPATH/RPATH copy",
     ": cannot create TLS data structures", ": cannot create cache for search path",
     ": cannot create capability list", ": cannot create scope list",
     ": cannot create search path array", ": cannot create searchlist",
     ": cannot create shared object descriptor", ": cannot allocate ", ": cannot extend ",
     "out of memory", "failed to map segment from shared object"});
// This area has a fixed size.
constexpr std::string_view kStaticArea = "static TLS block";

std::string textOfLackOfMemory() {
  return std::generic_category().message(ENOMEM);
}

std::string demangle(const std::string& symbol) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> text(
      abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status), &std::free);
  return text ? text.get() : symbol;
}

std::string join(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
  return joined;
}

Fault missingLibrary(const std::string& path, const std::string& library) {
  std::vector<std::string> folders;
  try {
    folders = readSharedLibrary(path).searchPaths;
  } catch (const UnusableLibrary&) {
    // The loader has said what is wrong.
  }
  const std::string places = folders.empty() ? "" : " (it is looked for in " + join(folders) + ")";
  return {"the library " + library + ", which it needs, is not found" + places,
          "install that library, or put it beside the bundle"};
}

}  // namespace

bool saysLackOfMemory(std::string_view error) {
  if (error.find(kStaticArea) != error.npos) return false;
  // A reason that does not fit in memory is left out.
  return error.ends_with(kNotOpened) || error.find(textOfLackOfMemory()) != error.npos ||
         std::ranges::any_of(kLackOfMemory, [error](std::string_view text) {
           return error.find(text) != error.npos;
         });
}

Fault describeLoadError(const std::string& path, std::string_view error) {
  const auto end = error.find(kNotFound);
  // Without memory for the name of a file, the loader says that the file is missing.
  const bool isWrong = error.substr(0, end) == path && std::filesystem::exists(path);
  if (saysLackOfMemory(error) || isWrong) {
    return {"the library cannot be loaded (" + textOfLackOfMemory() + ")", "close other programs"};
  }
  if (end != error.npos) return missingLibrary(path, std::string(error.substr(0, end)));
  if (const auto begin = error.find(kUndefined); begin != std::string_view::npos) {
    std::string_view symbol = error.substr(begin + kUndefined.size());
    symbol = symbol.substr(0, symbol.find_first_of(",( "));
    return {"it uses " + demangle(std::string(symbol)) +
                ", which none of the libraries that it is linked with defines",
            "link it with the library that does, or build it again with the libraries that are "
            "installed"};
  }
  return {"the library cannot be loaded (" + std::string(error) + ")",
          "link it with every library that it uses, and install those"};
}

}  // namespace quenlith::elf
