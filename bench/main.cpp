// Compares the parsers with their peers and with the floor, and prints tables in Markdown.

#include <sched.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <limits>

#include "ParserContest.hpp"
#include "growth/growth.hpp"
#include "harness/Allocations.hpp"

namespace {

struct Options {
  std::string corpus;
  std::size_t lines = std::numeric_limits<std::size_t>::max();
  int rounds = 5;
  std::string only;
  bool countsInstructions = false;
  std::size_t largest = 0;
};

void stayOnOneCore() {
  cpu_set_t cores;
  CPU_ZERO(&cores);
  const int core = sched_getcpu();
  CPU_SET(static_cast<std::size_t>(core < 0 ? 0 : core), &cores);
  // If this is not permitted, the figures only vary more.
  (void)sched_setaffinity(0, sizeof cores, &cores);
}

void run(const Options& options) {
  const bench::Corpus corpus = bench::Corpus::read(options.corpus, options.lines);
  bench::ParserContest contest(corpus, options.only);
  if (options.countsInstructions) {
    contest.count();
    bench::growth::countAll(corpus, options.largest);
  } else {
    contest.run(options.rounds);
    contest.write(std::cout);
  }
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Measures the parsers against their peers and against the floor."};
  Options options;
  app.add_option("corpus", options.corpus, "File of lines, made by scripts/bench")->required();
  app.add_option("--lines", options.lines, "Number of lines at most");
  app.add_option("--rounds", options.rounds, "Rounds of which the best counts");
  app.add_option("--only", options.only, "Measure one subject alone, to profile it");
  app.add_flag("--count", options.countsInstructions,
               "Count instructions and measure no time; for a run under callgrind");
  app.add_option("--largest", options.largest, "Largest size whose growth is counted");
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
