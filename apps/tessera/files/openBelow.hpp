#pragma once

#include <cstddef>
#include <string>

#include "tessera/files/Descriptor.hpp"

namespace tessera::files {

/// Opens the file or folder `path` to read, as `OpenFolder::openToRead` does. Symbolic links are
/// followed in the first `followed` bytes of `path` only, which end after a slash: what was found
/// below a folder is not something elsewhere. `flags` are added to those of open(). The result is
/// negative, with errno, when it cannot be opened.
Descriptor openBelow(const std::string& path, std::size_t followed, int flags = 0);

}  // namespace tessera::files
