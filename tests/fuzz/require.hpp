#pragma once

#include <cstdio>
#include <cstdlib>

namespace quenlith::fuzz {

/// Ends the program when an invariant does not hold: the fuzzer then keeps the input.
inline void require(bool holds, const char* invariant) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", invariant);
    std::abort();
  }
}

}  // namespace quenlith::fuzz
