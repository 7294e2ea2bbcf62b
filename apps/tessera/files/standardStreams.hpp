#pragma once

#include <string>

namespace tessera::files {

/// Opens something in place of each standard stream that is closed, so that no file opened later
/// gets its descriptor: what is written to standard output would go into that file. Reading or
/// writing such a stream still fails.
void reserveStandardStreams() noexcept;

/// Returns whether the standard stream `descriptor` is the regular file `name`.
bool isRedirectedTo(int descriptor, const std::string& name) noexcept;

}  // namespace tessera::files
