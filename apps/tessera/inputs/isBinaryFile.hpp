#pragma once

#include <string>
#include <string_view>

namespace tessera::inputs {

/// Returns whether the file that begins with `bytes` is binary: the first 8 KiB contain a NUL.
bool looksBinary(std::string_view bytes) noexcept;

/// Like `looksBinary`, for the file `path`. A file that cannot be read is not binary.
bool isBinaryFile(const std::string& path) noexcept;

}  // namespace tessera::inputs
