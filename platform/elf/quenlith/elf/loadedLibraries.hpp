#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quenlith::elf {

/// Returns the files of the libraries that are loaded in this process, in the order in which they
/// were loaded.
std::vector<std::string> loadedLibraries();

/// Returns the file of the first library of a framework that was loaded, which is the one that the
/// program was linked with, if there is one.
std::optional<std::string> loadedFramework();

/// Returns the file of the library or program that the code at `address` is part of.
std::string fileOfCode(const void* address);

}  // namespace quenlith::elf
