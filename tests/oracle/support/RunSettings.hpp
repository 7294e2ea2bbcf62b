#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace quenlith::oracle {

/// What one run of random cases is made from. Cases are numbered; each has a seed of its own,
/// so that one case can be run again alone.
struct RunSettings {
  std::uint64_t seed = 0;
  std::size_t cases = 0;
  /// Whether the program takes only a share of the cases, as sanitized ones do.
  static const bool kTakesShare;
  /// The only case to run, when set.
  std::optional<std::size_t> only;

  /// Reads ORACLE_SEED (at first a random seed), ORACLE_CASES (at first `defaultCases`, a share of
  /// them in a sanitized program) and ORACLE_CASE from the environment, and prints what was chosen.
  static RunSettings fromEnvironment(std::size_t defaultCases);

  /// True for a whole run of at least `defaultCases`: only such a run is held to its counts.
  bool isWhole(std::size_t defaultCases) const { return !only && cases >= defaultCases; }

  std::uint64_t seedOf(std::size_t caseNumber) const;
  /// Says how to run one case again.
  std::string repeatHint(std::size_t caseNumber) const;
};

}  // namespace quenlith::oracle
