#pragma once

#include <cstdio>

#include "harness/processorSeconds.hpp"

namespace bench::programs {

/// Runs `work` and prints how many seconds of processor time it took, without the rest of the
/// program.
template <class Work>
void printOwnTime(const Work& work) {
  const double begin = processorSeconds();
  work();
  std::printf("%.9f\n", processorSeconds() - begin);
}

}  // namespace bench::programs
