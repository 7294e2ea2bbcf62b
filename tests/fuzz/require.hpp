#pragma once

#include <cstdio>
#include <cstdlib>

namespace quenlith::fuzz {

/// Aborts the program if an invariant is broken: the fuzzer then saves the input.
inline void require(bool holds, const char* invariant) {
  if (!holds) {
    std::fprintf(stderr, "broken invariant: %s\n", invariant);
    std::abort();
  }
}

}  // namespace quenlith::fuzz
