#include "harness/Rounds.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

constexpr const char* kEndSeconds = "endSeconds";

void runOnce(benchmark::State& state, const Rounds::Run& run) {
  for ([[maybe_unused]] auto iteration : state) {
    const RunTimes times = run();
    state.SetIterationTime(times.seconds);
    state.counters[kEndSeconds] = times.endSeconds;
  }
}

}  // namespace

/// Keeps the best times of each benchmark over all rounds.
class Rounds::Reporter : public benchmark::BenchmarkReporter {
 public:
  explicit Reporter(std::deque<Competitor>& all) : competitors(all) {}

  bool ReportContext(const Context& /*context*/) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) take(run);
  }

 private:
  void take(const Run& run) {
    for (Competitor& competitor : competitors) {
      if (competitor.name != run.run_name.function_name) continue;
      RunTimes& best = competitor.best;
      best.seconds = std::min(best.seconds, run.real_accumulated_time);
      best.endSeconds = std::min(best.endSeconds, run.counters.at(kEndSeconds).value);
    }
  }

  std::deque<Competitor>& competitors;
};

void Rounds::add(const std::string& name, Run run) {
  Competitor& added = competitors.emplace_back(Competitor{name, std::move(run), {}});
  benchmark::RegisterBenchmark(name.c_str(),
                               [&added](benchmark::State& state) { runOnce(state, added.run); })
      ->Iterations(1)
      ->UseManualTime();
}

void Rounds::run(int rounds) {
  Reporter reporter(competitors);
  for (int round = 0; round < rounds; ++round) benchmark::RunSpecifiedBenchmarks(&reporter);
}

const RunTimes& Rounds::best(const std::string& name) const {
  for (const Competitor& competitor : competitors) {
    if (competitor.name == name) return competitor.best;
  }
  throw std::out_of_range("no competitor is named " + name);
}

}  // namespace bench
