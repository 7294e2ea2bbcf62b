#pragma once

#include <cstdlib>

namespace quenlith::test {

/// Returns how often a test repeats an operation to find what each repetition leaves behind:
/// TEST_CYCLES from the environment, or `usual`.
inline int testCycles(int usual) {
  const char* given = std::getenv("TEST_CYCLES");
  return given == nullptr ? usual : std::atoi(given);
}

}  // namespace quenlith::test
