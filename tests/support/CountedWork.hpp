#pragma once

#include <cstdint>

namespace quenlith::test {

/// Returns how many basic blocks the counted libraries have run on this thread so far. The count
/// of one operation is the same on every run of one build.
std::uint64_t countedWork();

}  // namespace quenlith::test
