#include "growth/growth.hpp"

#include <string>

#include "growth/subjects.hpp"
#include "harness/countInstructions.hpp"

namespace bench::growth {

namespace {

struct Dimension {
  const char* name;
  std::unique_ptr<Subject> (*make)(const Corpus&, std::size_t);
};

constexpr Dimension kDimensions[] = {
    {"lines", makeLines},
    {"markers a line", makeMarkers},
    {"ranges", makeRanges},
    {"failures", makeFailures},
    {"tasks", makeTasks},
    {"block length", makeBlock},
    {"appendix entries", makeAppendix},
};

}  // namespace

void countAll(const Corpus& lines, std::size_t largest) {
  for (const Dimension& dimension : kDimensions) {
    for (std::size_t size = 1000; size <= largest; size *= 10) {
      const auto subject = dimension.make(lines, size);
      countInstructions(*subject, std::string(dimension.name) + '|' + std::to_string(size));
    }
  }
}

}  // namespace bench::growth
