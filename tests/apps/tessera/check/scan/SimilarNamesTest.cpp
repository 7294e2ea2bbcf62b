#include "tessera/check/scan/SimilarNames.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "tessera/spelling/areSimilar.hpp"

namespace {

using tessera::check::scan::SimilarNames;
using tessera::spelling::areSimilar;

// The search finds a name exactly when the comparison with every name does.
TEST(SimilarNames, TheIndexFindsWhatComparingAllNamesFinds) {
  std::mt19937 random(7);
  const auto makeName = [&random] {
    std::u16string name(random() % 7, u' ');
    for (char16_t& unit : name) unit = u"abB"[random() % 3];
    return name;
  };
  for (int round = 0; round < 300; ++round) {
    std::vector<std::u16string> names;
    for (int i = 0; i < 4; ++i) names.push_back(makeName());
    SimilarNames index;
    for (std::size_t i = 0; i < names.size(); ++i) index.add(names[i], i);
    const std::u16string wanted = makeName();
    const auto expected = std::ranges::find_if(
        names, [&wanted](const std::u16string& name) { return areSimilar(name, wanted); });
    const auto found = index.find(wanted);
    ASSERT_EQ(found.has_value(), expected != names.end());
    if (!found) continue;
    ASSERT_EQ(*found, static_cast<std::size_t>(expected - names.begin()));
  }
}

TEST(SimilarNames, NamesThatAreAddedAfterASearchAreFound) {
  SimilarNames index;
  EXPECT_EQ(index.find(u"group"), std::nullopt);
  for (std::size_t number = 0; number < 100; ++number) {
    const std::u16string name(2 * number + 2, u'x');
    EXPECT_EQ(index.find(name + u'y'), std::nullopt) << number;
    index.add(name, number);
    const bool isLong = name.size() >= 64;
    EXPECT_EQ(index.find(name + u'y'), isLong ? std::nullopt : std::optional(number));
    EXPECT_EQ(index.find(std::u16string(name.size(), u'X')), number);
  }
}

TEST(SimilarNames, LongNamesAreComparedByCaseOnly) {
  const std::u16string name(100, u'x');
  SimilarNames index;
  index.add(name, 5);
  EXPECT_EQ(index.find(std::u16string(100, u'X')), 5u);
  EXPECT_EQ(index.find(std::u16string(101, u'x')), std::nullopt);
}

}  // namespace
