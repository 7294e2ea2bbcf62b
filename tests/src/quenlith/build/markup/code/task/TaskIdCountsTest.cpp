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
  EXPECT_EQ(counts.count(block, 0, u"t1"), 2u);
  EXPECT_EQ(counts.count(block, 0, u"t2"), 1u);
  EXPECT_EQ(counts.count(block, 0, u""), 1u);
  EXPECT_EQ(counts.count(block, 0, u"t3"), 0u);
  EXPECT_EQ(counts.count(u"", 0, u"t1"), 0u);
}

// The text of an unknown element is not a marker, so it does not hide the markers in it.
TEST(TaskIdCounts, CountsTaskMarkersInAnUnknownElement) {
  Counts counts;
  EXPECT_EQ(counts.count(u"# <@widget#\"# <@task#t1>\"> # <@task#t1>", 0, u"t1"), 2u);
}

TEST(TaskIdCounts, DistinguishesBlocksByTheirContent) {
  Counts counts;
  std::u16string block = u"# <@task#t1> # <@task#t1>";
  EXPECT_EQ(counts.count(block, 0, u"t1"), 2u);
  // The same address, another text of the same length.
  block[block.size() - 2] = u'2';
  EXPECT_EQ(counts.count(block, 0, u"t1"), 1u);
  EXPECT_EQ(counts.count(block, 0, u"t2"), 1u);
  // Another address, the same text as before.
  const std::u16string again = u"# <@task#t1> # <@task#t1>";
  EXPECT_EQ(counts.count(again, 0, u"t1"), 2u);
  EXPECT_EQ(counts.count(block, 0, u"t1"), 1u);
}

TEST(TaskIdCounts, ScansAgainAfterClear) {
  Counts counts;
  const std::u16string block = u"# <@task#t1>";
  EXPECT_EQ(counts.count(block, 0, u"t1"), 1u);
  counts.clear();
  EXPECT_EQ(counts.count(block, 0, u"t1"), 1u);
  EXPECT_EQ(counts.count(u"other", 0, u"t1"), 0u);
}

TEST(TaskIdCounts, DoesNotReadABlockOfTheSameVersion) {
  Counts counts;
  const std::u16string block = u"# <@task#t1>";
  EXPECT_EQ(counts.count(block, 7, u"t1"), 1u);
  // Not what a host does. It shows that no unit of the block was compared.
  EXPECT_EQ(counts.count(u"another block", 7, u"t1"), 1u);
  EXPECT_EQ(counts.count(u"another block", 0, u"t1"), 0u);
}

TEST(TaskIdCounts, ReadsABlockOfAnotherVersion) {
  Counts counts;
  const std::u16string once = u"# <@task#t1>";
  const std::u16string twice = once + once;
  EXPECT_EQ(counts.count(once, 1, u"t1"), 1u);
  EXPECT_EQ(counts.count(twice, 2, u"t1"), 2u);
  EXPECT_EQ(counts.count(once, 1, u"t1"), 1u);
  EXPECT_EQ(counts.count(twice, 0, u"t1"), 2u);
  EXPECT_EQ(counts.count(once, 1, u"t1"), 1u);
  counts.clear();
  EXPECT_EQ(counts.count(twice, 1, u"t1"), 2u);
}

}  // namespace
