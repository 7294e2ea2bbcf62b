#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace quenlith::exhaustive {

/// The number of units of the whole form.
constexpr std::size_t kWholeUnits = 7;

/// Returns the greatest number of units or calls of a sequence in this run: EXHAUSTIVE_UNITS in the
/// environment (7 for the whole form), else a number set by the build. From 3 to 7.
std::size_t unitsOfThisRun();

/// The number of units by which a run is divided among threads.
constexpr std::size_t kSpread = 2;

/// What a part of a run did.
struct Outcome {
  std::uint64_t cases = 0;
  /// How often something occurred without which the cases would show little, such as a marker.
  std::uint64_t occurrences = 0;
  /// Where the program and its twin disagree first; empty if they agree.
  std::string difference;
};

enum class Threads { kOne, kAll };

/// Calls `part(first, second)` for all pairs of numbers below `symbols`, on one thread or on one
/// per processor, and returns the sums. Stops at the first difference.
Outcome forEachPair(std::size_t symbols, Threads threads,
                    const std::function<Outcome(std::size_t, std::size_t)>& part);

/// Prints `outcome` after `name`. Fails the current test if there is a difference, or if
/// `occurrence` did not occur.
void report(const std::string& name, const Outcome& outcome, const std::string& occurrence);

}  // namespace quenlith::exhaustive
