#pragma once

#include <string>
#include <string_view>

namespace tessera::reports {

/// Returns the URI of the file `path`, a sequence of bytes: an absolute "file" URI for an absolute
/// path, otherwise a relative reference without "./" at its start.
///
/// Bytes other than ASCII letters, digits, "-", ".", "_", "~" and "/" are percent-encoded, also
/// those that are not UTF-8.
std::string artifactUri(std::string_view path);

}  // namespace tessera::reports
