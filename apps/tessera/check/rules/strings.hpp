#pragma once

#include <string_view>

#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/scan/FileScan.hpp"

namespace tessera::check::rules {

/// Reports the markers of the code that are inside strings, if the extension of `path` tells the
/// language.
void checkStrings(const scan::FileScan& scan, std::string_view path, Findings& findings);

}  // namespace tessera::check::rules
