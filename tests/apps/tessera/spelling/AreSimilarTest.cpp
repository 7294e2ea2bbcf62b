#include "tessera/spelling/areSimilar.hpp"

#include <gtest/gtest.h>

#include <utility>

namespace {

using tessera::spelling::areSimilar;

TEST(AreSimilar, OneEditOrTheCaseMakesNamesSimilar) {
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

}  // namespace
