#pragma once

#include <deque>
#include <functional>
#include <limits>
#include <string>

namespace bench {

/// What one run took.
struct RunTimes {
  double seconds = std::numeric_limits<double>::infinity();
  /// Of destroying what was built, which is not part of `seconds`.
  double endSeconds = std::numeric_limits<double>::infinity();
};

/// Runs competitors in turn, each of them once a round, and keeps the best times of each.
class Rounds {
 public:
  using Run = std::function<RunTimes()>;

  /// `name` is unique. What `run` throws leaves `run` of the rounds.
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
