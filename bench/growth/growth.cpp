#include "growth/growth.hpp"

#include <algorithm>
#include <string>

#include "growth/subjects.hpp"
#include "harness/countInstructions.hpp"

namespace bench::growth {

namespace {

struct Dimension {
  const char* name;
  std::unique_ptr<Subject> (*make)(const Corpus&, std::size_t);
  std::size_t largest = 1'000'000;
};

constexpr std::size_t kSmallest = 1000;

// Each task compares the block: callgrind would take an hour for a million of them.
constexpr Dimension kDimensions[] = {
    {"lines", makeLines},
    {"markers per line", makeMarkers},
    {"ranges", makeRanges},
    {"failures", makeFailures},
    {"tasks", makeTasks, 100'000},
    {"block length", makeBlock},
    {"appendix entries", makeAppendix},
};

}  // namespace

void countAll(const Corpus& lines, std::size_t largest) {
  for (const Dimension& dimension : kDimensions) {
    for (std::size_t size = kSmallest; size <= std::min(largest, dimension.largest); size *= 10) {
      const auto subject = dimension.make(lines, size);
      if (size == kSmallest) warmUp(*subject);
      countInstructions(*subject, std::string(dimension.name) + '|' + std::to_string(size));
    }
  }
}

}  // namespace bench::growth
