#pragma once

#include <cstdio>

#include "harness/processorSeconds.hpp"

namespace bench::programs {

/// Does `work` and prints how many seconds of a processor it took: what the program does
/// before and behind does not count.
template <class Work>
void printOwnTime(const Work& work) {
  const double begin = processorSeconds();
  work();
  std::printf("%.9f\n", processorSeconds() - begin);
}

}  // namespace bench::programs
