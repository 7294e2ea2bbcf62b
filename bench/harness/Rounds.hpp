#pragma once

#include <deque>
#include <functional>
#include <limits>
#include <string>

namespace bench {

/// The times of one run.
struct RunTimes {
  double seconds = std::numeric_limits<double>::infinity();
  /// The time of the destruction, which is not part of `seconds`.
  double endSeconds = std::numeric_limits<double>::infinity();
};

/// Runs competitors in turn, each of them once per round, and keeps the best times of each.
class Rounds {
 public:
  using Run = std::function<RunTimes()>;

  /// `name` must be unique. Exceptions of `run` are propagated by `Rounds::run`.
  void add(const std::string& name, Run run);
  void run(int rounds);
  /// Throws std::out_of_range if no competitor has that name.
  const RunTimes& best(const std::string& name) const;

 private:
  class Reporter;
  struct Competitor {
    std::string name;
    Run run;
    RunTimes best;
  };

  // A deque: the benchmarks borrow their competitors.
  std::deque<Competitor> competitors;
};

}  // namespace bench
