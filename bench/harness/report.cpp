#include "harness/report.hpp"

#include <ostream>

#include "harness/MarkdownTable.hpp"

namespace bench {

namespace {

constexpr double kLeastFloorsOfPugixml = 1.9;
constexpr double kLeastFloorsOfCmark = 13;

double floors(const Contest& contest, const Measurement& measured) {
  return measured.nanosecondsALine() / contest.of("floor").nanosecondsALine();
}

std::vector<std::string> rowOf(const Contest& contest, const Measurement& measured) {
  return {measured.name,
          decimal(measured.nanosecondsALine(), 1),
          hasFloor(contest) && floorCounts(contest) ? decimal(floors(contest, measured), 2) : "-",
          decimal(measured.megabytesASecond(), 0),
          decimal(measured.destroyNanosecondsALine(), 1),
          decimal(measured.liveBytesALine(), 1),
          decimal(measured.peakBytesALine(), 1),
          decimal(measured.allocationsALine(), 4)};
}

}  // namespace

bool hasFloor(const Contest& contest) {
  return contest.has("floor") && contest.has("pugixml") && contest.has("cmark");
}

bool floorCounts(const Contest& contest) {
  return floors(contest, contest.of("pugixml")) >= kLeastFloorsOfPugixml &&
         floors(contest, contest.of("cmark")) >= kLeastFloorsOfCmark;
}

void writeMeasurements(std::ostream& out, const Contest& contest) {
  MarkdownTable table({"what", "ns per line", "x floor", "MB/s", "end, ns per line",
                       "live bytes per line", "peak bytes per line", "allocations per line"});
  contest.forEach([&](const Measurement& measured) { table.add(rowOf(contest, measured)); });
  table.write(out);
  if (!hasFloor(contest) || floorCounts(contest)) return;
  out << "\nThe floor is too slow to count: pugixml takes "
      << decimal(floors(contest, contest.of("pugixml")), 2) << " floors (at least "
      << decimal(kLeastFloorsOfPugixml, 1) << " wanted), cmark "
      << decimal(floors(contest, contest.of("cmark")), 1) << " (at least "
      << decimal(kLeastFloorsOfCmark, 0) << " wanted). No ratio is given.\n";
}

}  // namespace bench
