#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace quenlith::oracle {

/// The settings of a run of random cases. Cases are numbered; each has its own seed, so that one
/// case can be repeated alone.
struct RunSettings {
  std::uint64_t seed = 0;
  std::size_t cases = 0;
  /// The number of cases of a whole run.
  std::size_t wholeCases = 0;
  /// The only case to run, when set.
  std::optional<std::size_t> only;

  /// Reads the settings from the environment and prints them: ORACLE_SEED (default: random),
  /// ORACLE_SHARE (n for the n-th part of the cases, 1 for a whole run; default: set by the build),
  /// ORACLE_CASES (default: that part of `wholeCases`) and ORACLE_CASE.
  static RunSettings fromEnvironment(std::size_t wholeCases);

  bool isWhole() const { return !only && cases >= wholeCases; }
  /// Returns the minimum in this run of a count that has the minimum `wholeLeast` in a whole run.
  /// It is not 0, but lower than this run's part, because small counts vary more.
  std::size_t leastOf(std::size_t wholeLeast) const;

  /// Calls `run` with the number of each case of this run until it returns false. Returns whether
  /// all of them passed; false also if there was only one to repeat.
  bool runCases(const std::function<bool(std::size_t)>& run) const;

  std::uint64_t seedOf(std::size_t caseNumber) const;
  /// Returns how to repeat one case.
  std::string repeatHint(std::size_t caseNumber) const;
};

}  // namespace quenlith::oracle
