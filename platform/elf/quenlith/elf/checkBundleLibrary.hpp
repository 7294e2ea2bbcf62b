#pragma once

#include <optional>
#include <string>

#include "quenlith/elf/Fault.hpp"

namespace quenlith::elf {

/// Returns what makes the library `path` of a bundle unusable in this process, as far as that can
/// be seen before it is loaded, if there is something:
/// - it cannot be read, or is not a shared library for this machine;
/// - it, or a library that it is linked with, was linked with another framework than
///   `frameworkFile`, the library of the framework that runs here;
/// - it needs another version of one of this project's libraries than the one that is loaded.
///
/// Libraries of others are followed where the search paths of the bundle or LD_LIBRARY_PATH lead to
/// them, in the order of the loader. No code of the bundle is run.
std::optional<Fault> checkBundleLibrary(const std::string& path, const std::string& frameworkFile);

}  // namespace quenlith::elf
