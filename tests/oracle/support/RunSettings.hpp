#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace quenlith::oracle {

/// The settings of a run of random cases. Cases are numbered; each has its own seed, so that one
/// case can be repeated alone.
struct RunSettings {
  std::uint64_t seed = 0;
  std::size_t cases = 0;
  /// Whether the program runs only a share of the cases, as sanitized ones do.
  static const bool kTakesShare;
  /// The only case to run, when set.
  std::optional<std::size_t> only;

  /// Reads ORACLE_SEED (default: random), ORACLE_CASES (default: `defaultCases`, or a share of them
  /// in a sanitized program) and ORACLE_CASE from the environment, and prints the settings.
  static RunSettings fromEnvironment(std::size_t defaultCases);

  /// True for a run of at least `defaultCases`: only such a run has minimum counts.
  bool isWhole(std::size_t defaultCases) const { return !only && cases >= defaultCases; }

  std::uint64_t seedOf(std::size_t caseNumber) const;
  /// Returns how to repeat one case.
  std::string repeatHint(std::size_t caseNumber) const;
};

}  // namespace quenlith::oracle
