#pragma once

#include <cstddef>
#include <string>

namespace bench::programs {

/// Writes the first `lineCount` lines of the file `from` to the file `to`, every tenth with a
/// marker at its end, and an appendix with an entry for each task.
///
/// The markers are, in turn: an output with a range and data, a control with data, an anchor, and
/// the two of a task. `tessera check` finds nothing wrong with them.
void writeMarkedFile(const std::string& from, const std::string& to, std::size_t lineCount);

}  // namespace bench::programs
