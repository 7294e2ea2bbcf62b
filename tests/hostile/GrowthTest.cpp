#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <numeric>
#include <string>
#include <string_view>

#include "hostile/Meter.hpp"
#include "hostile/families.hpp"
#include "hostile/surfaces.hpp"
#include "tessera/reports/LineFingerprints.hpp"

namespace hostile {
namespace {

/// The sizes of the texts, in code units, and how the cost may grow from one to the other.
struct Sizes {
  std::size_t small;
  std::size_t large;
  double exponent;
};

// In small texts, the logarithm of a sort and what does not depend on the size weigh more.
constexpr Sizes kQuick{.small = 1'000, .large = 4'000, .exponent = 1.15};
constexpr Sizes kAll{.small = 125'000, .large = 1'000'000, .exponent = 1.05};
// For `kLargeResults`: of a text of a million code units, they would have a hundred gigabytes.
constexpr Sizes kLargeResult{.small = 4'000, .large = 16'000, .exponent = 1.15};
// For `kLongTask`: after 65,535 lines the task ends, and each line that follows asks one parser
// more.
constexpr Sizes kWithinTask{.small = 15'625, .large = 125'000, .exponent = 1.05};
constexpr std::string_view kLongTask = "a long task";
// For `kOneFixPerRound`: up to 40 of its lines, each line needs a round of `--fix`.
constexpr Sizes kAfterAllRounds{.small = 4'000, .large = 16'000, .exponent = 1.15};
constexpr std::string_view kOneFixPerRound = "comments that are not closed";

// What grows in steps, such as a hash table.
constexpr std::uint64_t kConstantWork = 25'000;
constexpr std::size_t kConstantBytes = 200'000;
// A vector or a string that grows has up to twice the capacity that it needs.
constexpr double kDoubling = 2;

// Hosts may call the parsers on threads with small stacks.
constexpr std::size_t kLargestStack = std::size_t{64} << 10U;
// Functions that are bound at their first call, and the depth of a sort.
constexpr std::size_t kStackNoise = 4'096;

std::string_view settingOf(const char* name) {
  const char* const setting = std::getenv(name);
  return setting == nullptr ? "" : setting;
}

/// What grows faster because the result does: the rules of the document say so.
constexpr struct {
  std::string_view family;
  std::string_view surface;
} kLargeResults[] = {
    // The document repeats the data of the entry for each failure.
    {"markers of one id, and an entry with a wide array", "parse --format json"},
    {"markers of one id, and an entry with a wide array", "replay"},
};

bool hasLargeResult(const std::string& family, const std::string& surface) {
  return std::ranges::any_of(kLargeResults, [&](const auto& large) {
    return large.family == family && large.surface == surface;
  });
}

/// Returns the sizes for the texts of `family`.
Sizes sizesOf(const std::string& family, const Sizes& usual) {
  const auto atMost = [&usual](const Sizes& own) { return usual.large > own.large ? own : usual; };
  if (family == kLongTask) return atMost(kWithinTask);
  if (family == kOneFixPerRound && usual.small < kAfterAllRounds.small) return kAfterAllRounds;
  const bool isLarge =
      std::ranges::any_of(kLargeResults, [&](const auto& large) { return large.family == family; });
  return isLarge ? atMost(kLargeResult) : usual;
}

/// The largest exponent found, and where.
struct Largest {
  double exponent = 0;
  std::string place;
};

/// Returns the work on `surface` that depends on the text: without that on an empty one.
std::uint64_t variableWork(const std::string& surface, const Cost& cost) {
  static const std::map<std::string, Cost> fixed = measureAll({});
  return cost.work - std::min(cost.work, fixed.at(surface).work);
}

class Comparison {
 public:
  Comparison(const Family& family, const Sizes& sizes, Largest& largest)
      : sizes(sizes), family(family.name), largest(largest) {
    const auto small = family.make(sizes.small);
    const auto large = family.make(sizes.large);
    ratio = static_cast<double>(large.size()) / static_cast<double>(small.size());
    few = measureAll(small);
    many = measureAll(large);
  }

  /// Returns the number of rows.
  std::size_t compare() {
    for (const auto& [surface, cost] : many) {
      SCOPED_TRACE(family + ": " + surface);
      const Cost& before = few.at(surface);
      EXPECT_GT(cost.work, 0U);
      if (!hasLargeResult(family, surface)) {
        compareWork(surface, variableWork(surface, before), variableWork(surface, cost));
        EXPECT_LE(static_cast<double>(cost.heapBytes),
                  kDoubling * most(static_cast<double>(before.heapBytes)) + kConstantBytes)
            << "bytes at the smaller size: " << before.heapBytes;
      }
      EXPECT_LE(cost.stackBytes, kLargestStack);
      EXPECT_LE(cost.stackBytes, before.stackBytes + kStackNoise);
    }
    return many.size();
  }

 private:
  double most(double before) const { return before * std::pow(ratio, sizes.exponent); }

  void compareWork(const std::string& surface, std::uint64_t before, std::uint64_t after) {
    EXPECT_LE(static_cast<double>(after), most(static_cast<double>(before)) + kConstantWork)
        << "work at the smaller size: " << before;
    const double exponent = std::log(static_cast<double>(after + kConstantWork) /
                                     static_cast<double>(before + kConstantWork)) /
                            std::log(ratio);
    if (exponent > largest.exponent) largest = {exponent, family + ": " + surface};
  }

  Sizes sizes;
  std::string family;
  Largest& largest;
  double ratio = 1;
  std::map<std::string, Cost> few;
  std::map<std::string, Cost> many;
};

TEST(Hostile, WorkMemoryAndStackDoNotGrowFasterThanTheText) {
  const Sizes sizes = settingOf("HOSTILE_SIZES") == "all" ? kAll : kQuick;
  const std::string_view chosen = settingOf("HOSTILE_FAMILY");
  Largest largest;
  std::size_t count = 0;
  std::size_t rows = 0;
  for (const Family& family : families()) {
    if (family.name.find(chosen) == family.name.npos) continue;
    ++count;
    rows += Comparison(family, sizesOf(family.name, sizes), largest).compare();
  }
  EXPECT_GT(rows, 0U);
  std::printf("%zu families, %zu rows, from %zu to %zu code units; largest exponent %.3f (%s)\n",
              count, rows, sizes.small, sizes.large, largest.exponent, largest.place.c_str());
}

// In the whole report, their part of the work is so small that growth in it shows in long texts
// only.
TEST(Hostile, WorkOfFingerprintsDoesNotGrowFasterThanTheirNumber) {
  const auto workOf = [](std::size_t count) {
    std::u16string lines(count, u'\0');
    std::iota(lines.begin(), lines.end(), u'\0');
    const auto nameAll = [&lines] {
      tessera::reports::LineFingerprints fingerprints;
      for (const char16_t& line : lines) fingerprints.next("id", {&line, 1});
    };
    return measure(nameAll).work;
  };
  const std::uint64_t few = workOf(1'000);
  EXPECT_GT(few, 1'000U);
  // A little more for the depth of the search tree.
  EXPECT_LT(workOf(10'000), 12 * few);
}

}  // namespace
}  // namespace hostile
