#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace quenlith::fuzz {

/// Ends the process if an invariant is broken: the fuzzer then saves the input.
inline void require(bool holds, const char* invariant) {
  if (holds) return;
  std::fprintf(stderr, "broken invariant: %s\n", invariant);
  std::abort();
}

/// Like the above. `details`, which is called only then, returns what a person wants to see.
template <class Details>
void require(bool holds, const char* invariant, const Details& details) {
  if (holds) return;
  const std::string shown = details();
  std::fwrite(shown.data(), 1, shown.size(), stderr);
  std::fputc('\n', stderr);
  require(false, invariant);
}

}  // namespace quenlith::fuzz
