#pragma once

#include <string>

#include "harness/Subject.hpp"

namespace bench {

/// Makes callgrind, when the program runs under it, count the instructions of one `build` and one
/// `destroy`, and dump each count. Prints the name of each dump, "build|`name`" and "end|`name`",
/// in the order of the dumps.
void countInstructions(Subject& subject, const std::string& name);

/// Builds and destroys once, so that no count contains one-time work.
void warmUp(Subject& subject);

}  // namespace bench
