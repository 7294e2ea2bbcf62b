#pragma once

#include "tessera/files/FileReader.hpp"
#include "tessera/inputs/Input.hpp"

namespace tessera::inputs {

/// Opens a file to read. One that was found in a directory is not followed elsewhere if it, or a
/// folder of it, has become a symbolic link. Throws ProblemError when it cannot be opened.
inline files::FileReader openInput(const Input& input) {
  return input.isFound ? files::FileReader(input.path, input.namedBytes)
                       : files::FileReader(input.path);
}

}  // namespace tessera::inputs
