#include "tessera/hashing/KeyedIndex.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

namespace {

using tessera::hashing::KeyedIndex;
using Numbers = std::vector<std::size_t>;

Numbers numbersOf(const KeyedIndex& index, std::uint64_t key) {
  Numbers numbers;
  index.forEach(key, [&](std::size_t number) { numbers.push_back(number); });
  return numbers;
}

TEST(KeyedIndex, AnEmptyOneHasNoNumbers) {
  KeyedIndex index;
  EXPECT_EQ(numbersOf(index, 0), Numbers());
  index.reserve(0);
  EXPECT_EQ(numbersOf(index, 0), Numbers());
}

TEST(KeyedIndex, AKeyHasTheFirstNumbersInTheirOrder) {
  for (const std::size_t room : {0U, 7U, 4000U}) {
    std::mt19937_64 random(room);
    KeyedIndex index;
    index.reserve(room);
    std::map<std::uint64_t, Numbers> expected;
    for (std::size_t number = 0; number < 3000; ++number) {
      const std::uint64_t key = random() % 1000;
      index.add(key, number);
      if (expected[key].size() < KeyedIndex::kMostPerKey) expected[key].push_back(number);
    }
    for (std::uint64_t key = 0; key < 1100; ++key) {
      ASSERT_EQ(numbersOf(index, key), expected[key]) << key;
    }
  }
}

TEST(KeyedIndex, ANumberThatIsAddedAgainIsThereOnce) {
  KeyedIndex index;
  for (const std::size_t number : {1U, 1U, 2U, 2U, 3U}) index.add(5, number);
  EXPECT_EQ(numbersOf(index, 5), (Numbers{1, 2, 3}));
}

}  // namespace
