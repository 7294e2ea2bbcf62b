#include "tessera/check/scan/SimilarNames.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

using tessera::check::scan::areSimilar;
using tessera::check::scan::SimilarNames;

TEST(SimilarNames, OneEditOrTheCaseMakesNamesSimilar) {
  for (const auto& [a, b] :
       {std::pair(u"task", u"tasks"), std::pair(u"task", u"tak"), std::pair(u"task", u"tusk"),
        std::pair(u"task", u"taks"), std::pair(u"task", u"atsk"), std::pair(u"task", u"TASK"),
        std::pair(u"task", u"Tak"), std::pair(u"a", u"ab")}) {
    EXPECT_TRUE(areSimilar(a, b));
    EXPECT_TRUE(areSimilar(b, a));
  }
  for (const auto& [a, b] :
       {std::pair(u"task", u"task"), std::pair(u"task", u"tsak1"), std::pair(u"task", u"text"),
        std::pair(u"task", u"ksat"), std::pair(u"", u"a"), std::pair(u"task", u"taskss")}) {
    EXPECT_FALSE(areSimilar(a, b));
    EXPECT_FALSE(areSimilar(b, a));
  }
}

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

TEST(SimilarNames, LongNamesAreComparedByCaseOnly) {
  const std::u16string name(100, u'x');
  SimilarNames index;
  index.add(name, 5);
  EXPECT_EQ(index.find(std::u16string(100, u'X')), 5u);
  EXPECT_EQ(index.find(std::u16string(101, u'x')), std::nullopt);
}

}  // namespace
