#pragma once

#include <cstddef>

#include "harness/Corpus.hpp"

namespace bench::growth {

/// Counts instructions for growing input, one dimension after the other: lines, markers per line,
/// ranges, failures, tasks, block length, appendix entries; each from a thousand in steps of ten
/// to at most `largest`. The names of the counts are "DIMENSION|SIZE".
void countAll(const Corpus& lines, std::size_t largest);

}  // namespace bench::growth
