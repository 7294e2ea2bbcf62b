#include "exhaustive/Run.hpp"

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <thread>
#include <vector>

namespace quenlith::exhaustive {

namespace {

// The first block of a document's storage is so large that malloc maps pages for it and unmaps them
// with the document, which takes a third of the time of a short sequence.
const int kPagesAreKept = mallopt(M_MMAP_THRESHOLD, 1 << 26) & mallopt(M_TRIM_THRESHOLD, 1 << 26);

}  // namespace

std::size_t unitsOfThisRun() {
  const char* text = std::getenv("EXHAUSTIVE_UNITS");
  const std::size_t units =
      text == nullptr || *text == '\0' ? EXHAUSTIVE_UNITS : std::strtoul(text, nullptr, 10);
  return std::clamp(units, kSpread + 1, kWholeUnits);
}

Outcome forEachPair(std::size_t symbols, Threads threads,
                    const std::function<Outcome(std::size_t, std::size_t)>& part) {
  Outcome sum;
  std::mutex mutex;
  std::atomic<std::size_t> next = 0;
  std::atomic<bool> differs = false;
  const auto work = [&] {
    for (std::size_t pair = next++; pair < symbols * symbols && !differs; pair = next++) {
      const Outcome outcome = part(pair / symbols, pair % symbols);
      const std::lock_guard lock(mutex);
      sum.cases += outcome.cases;
      sum.occurrences += outcome.occurrences;
      if (outcome.difference.empty() || differs.exchange(true)) continue;
      sum.difference = outcome.difference;
    }
  };
  std::vector<std::thread> others;
  const std::size_t count =
      threads == Threads::kOne ? 1 : std::max(1U, std::thread::hardware_concurrency());
  while (others.size() + 1 < count) others.emplace_back(work);
  work();
  for (std::thread& other : others) other.join();
  return sum;
}

void report(const std::string& name, const Outcome& outcome, const std::string& occurrence) {
  std::cout << name << ": " << outcome.cases << " cases, " << outcome.occurrences << ' '
            << occurrence << '\n';
  EXPECT_EQ(outcome.difference, "");
  EXPECT_GT(outcome.occurrences, 0U);
}

}  // namespace quenlith::exhaustive
