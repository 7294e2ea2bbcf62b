#pragma once

#include <string>

#include "harness/Subject.hpp"

namespace bench {

/// Lets callgrind, when the program runs under it, count the instructions of one building and of
/// one end, and dump each count. Prints the name of each dump, "build|`name`" and "end|`name`",
/// in the order of the dumps.
void countInstructions(Subject& subject, const std::string& name);

/// Builds and ends once, so that what is made once and kept is in no count.
void warmUp(Subject& subject);

}  // namespace bench
