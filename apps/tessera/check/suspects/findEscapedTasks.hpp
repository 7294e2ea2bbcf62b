#pragma once

#include <vector>

#include "tessera/check/scan/FileScan.hpp"
#include "tessera/check/suspects/Suspect.hpp"

namespace tessera::check::suspects {

/// Appends the task markers of the code that the parsers take in different ways, because "%%\" is
/// before them or inside. Those with one id are one suspect.
void findEscapedTasks(const scan::FileScan& scan, std::vector<Suspect>& suspects);

}  // namespace tessera::check::suspects
