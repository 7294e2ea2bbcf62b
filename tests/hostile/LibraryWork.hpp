#pragma once

#include <cstddef>
#include <cstdint>

namespace hostile {

/// What functions of the C and C++ libraries did for this process, which are not compiled with
/// counters.
struct LibraryWork {
  /// The bytes that memcpy() and its like copied, set, compared or searched.
  std::uint64_t bytes = 0;
  std::size_t liveBytes = 0;
  /// The most live bytes since `resetPeak`.
  std::size_t peakBytes = 0;
};

LibraryWork libraryWork();
void resetPeak();

}  // namespace hostile
