#pragma once

#include <vector>

#include "tessera/inputs/Input.hpp"

namespace tessera::inputs {

/// Removes each input that is the same file as an earlier one under the same name, once symbolic
/// links are followed: "a" and "./a" are, two names of one file (hard links) are not. What does not
/// exist, or is not a regular file, stays.
void dropRepeated(std::vector<Input>& inputs);

}  // namespace tessera::inputs
