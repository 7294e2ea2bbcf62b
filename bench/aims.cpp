#include "aims.hpp"

#include <ostream>
#include <string_view>

#include "harness/AimTable.hpp"

namespace bench {

namespace {

/// The figures of one run that the aims refer to.
class Figures {
 public:
  explicit Figures(const Contest& allMeasured) : contest(allMeasured) {}

  double nanoseconds(const std::string& name) const { return contest.of(name).nanosecondsALine(); }
  double floors(double nanosecondsALine) const { return nanosecondsALine / nanoseconds(kFloor); }
  double withoutLists() const { return nanoseconds(kParseLine) - nanoseconds(kLists); }
  double timesPlain(const std::string& kind) const {
    return nanoseconds(kParseLine + kind) / nanoseconds(kParseLine + kPlain);
  }
  const Measurement& parseLine() const { return contest.of(kParseLine); }
  /// Without the copies of the lists, which are not part of the document.
  double documentAllocationsALine() const {
    return parseLine().allocationsALine() - contest.of(kLists).allocationsALine();
  }

 private:
  const Contest& contest;
};

void addSpeed(AimTable& table, const Figures& figures) {
  table.atMost("parseLine without the provider's two lists, in floors",
               figures.floors(figures.withoutLists()), 1.4);
  table.atMost("the same, in times of pugixml's tree build",
               figures.withoutLists() / figures.nanoseconds(kPugixml), 1);
  table.atMost("parseLine, all counted, in floors", figures.floors(figures.nanoseconds(kParseLine)),
               2.4);
  table.atMost("the same, in times of md4c's events",
               figures.nanoseconds(kParseLine) / figures.nanoseconds(kMd4c), 1);
}

void addService(AimTable& table, const Figures& figures) {
  const double parser = figures.nanoseconds(kService);
  const bool isInstalled = std::string_view(QUENLITH_BENCH_FRAMEWORK) == "system";
  table.atMost(std::string("default parser as a service, ") +
                   (isInstalled ? "installed" : "embedded") + " framework, in floors",
               figures.floors(parser), isInstalled ? 5.0 : 3.4);
  table.atLeast("its speed in times of cmark's", figures.nanoseconds(kCmark) / parser, 5);
}

void addMarked(AimTable& table, const Figures& figures) {
  table.atMost("a marker in 1 of 10 lines, in times of the plain line",
               figures.timesPlain(kOneIn10), 1.8);
  table.atMost("a marker per line, data included, in times of the plain line",
               figures.timesPlain(kOneALine), 4.5);
}

void addMemory(AimTable& table, const Figures& figures) {
  const Measurement& parsed = figures.parseLine();
  table.atMost("live bytes of the document per line", parsed.liveBytesALine(), 180);
  table.atMost("allocations of the document per line", figures.documentAllocationsALine(), 0.05);
  table.atMost("peak memory in times of live memory",
               parsed.peakBytesALine() / parsed.liveBytesALine(), 1.1);
  table.atMost("destruction in times of building", parsed.destroySeconds / parsed.buildSeconds,
               0.3);
}

}  // namespace

void writeAims(std::ostream& out, const Contest& contest) {
  const Figures figures(contest);
  AimTable table;
  addSpeed(table, figures);
  addService(table, figures);
  addMarked(table, figures);
  addMemory(table, figures);
  table.write(out);
}

}  // namespace bench
