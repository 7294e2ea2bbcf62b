#include "quenlith/build/markup/code/task/TaskIdCounts.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using Counts = quenlith::build::markup::code::task::TaskIdCounts;

TEST(TaskIdCounts, CountsTheTaskMarkersOfAnId) {
  Counts counts;
  const std::u16string block =
      u"a # <@task#t1>\nb # <@output#t1>\n# <@task#t2> # <@task#t1 {\"a\":1}>\n# <@task>\n# "
      u"<@text:task#t1>";
  EXPECT_EQ(counts.count(block, u"t1"), 2u);
  EXPECT_EQ(counts.count(block, u"t2"), 1u);
  EXPECT_EQ(counts.count(block, u""), 1u);
  EXPECT_EQ(counts.count(block, u"t3"), 0u);
  EXPECT_EQ(counts.count(u"", u"t1"), 0u);
}

TEST(TaskIdCounts, TellsBlocksApartByTheirContent) {
  Counts counts;
  std::u16string block = u"# <@task#t1> # <@task#t1>";
  EXPECT_EQ(counts.count(block, u"t1"), 2u);
  // The same place in memory, another text of the same length.
  block[block.size() - 2] = u'2';
  EXPECT_EQ(counts.count(block, u"t1"), 1u);
  EXPECT_EQ(counts.count(block, u"t2"), 1u);
  // Another place, a text seen before.
  const std::u16string again = u"# <@task#t1> # <@task#t1>";
  EXPECT_EQ(counts.count(again, u"t1"), 2u);
  EXPECT_EQ(counts.count(block, u"t1"), 1u);
}

TEST(TaskIdCounts, CountsAgainWhatItForgot) {
  Counts counts;
  const std::u16string block = u"# <@task#t1>";
  EXPECT_EQ(counts.count(block, u"t1"), 1u);
  counts.clear();
  EXPECT_EQ(counts.count(block, u"t1"), 1u);
  EXPECT_EQ(counts.count(u"other", u"t1"), 0u);
}

}  // namespace
