// Measures the parsers against their peers and against the floor, and prints tables in Markdown.

#include <sched.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "floor/Floor.hpp"
#include "harness/Contest.hpp"
#include "harness/report.hpp"
#include "peers/peers.hpp"

namespace {

struct Options {
  std::string corpus;
  std::size_t lines = std::numeric_limits<std::size_t>::max();
  int rounds = 5;
};

void stayOnOneCore() {
  cpu_set_t cores;
  CPU_ZERO(&cores);
  const int core = sched_getcpu();
  CPU_SET(static_cast<std::size_t>(core < 0 ? 0 : core), &cores);
  // Where it is not allowed the figures are only less steady.
  (void)sched_setaffinity(0, sizeof cores, &cores);
}

void run(const Options& options) {
  const bench::Corpus corpus = bench::Corpus::read(options.corpus, options.lines);
  bench::Contest contest;
  contest.add("floor", corpus, bench::floor::make);
  contest.add("pugixml", corpus, bench::peers::makePugixml);
  contest.add("md4c", corpus, bench::peers::makeMd4c);
  contest.add("libxml2", corpus, bench::peers::makeLibxml2);
  contest.add("cmark", corpus, bench::peers::makeCmark);
  contest.run(options.rounds);
  bench::writeMeasurements(std::cout, contest);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Measures the parsers against their peers and against the floor."};
  Options options;
  app.add_option("corpus", options.corpus, "File of lines, made by scripts/bench")->required();
  app.add_option("--lines", options.lines, "Number of lines at most");
  app.add_option("--rounds", options.rounds, "Rounds of which the best counts");
  CLI11_PARSE(app, argc, argv);

  bench::keepMemory();
  stayOnOneCore();
  try {
    run(options);
  } catch (const std::exception& error) {
    std::cerr << "bench: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
