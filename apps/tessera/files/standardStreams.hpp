#pragma once

#include <string>

namespace tessera::files {

/// Takes the numbers of the standard streams that are closed, so that no file opened later gets
/// one of them: what is written to standard output would go into that file. Reading and writing
/// such a stream still fails.
void reserveStandardStreams() noexcept;

/// Tells whether the standard stream `descriptor` is the regular file `name`.
bool isRedirectedTo(int descriptor, const std::string& name) noexcept;

}  // namespace tessera::files
