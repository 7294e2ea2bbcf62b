#include <gtest/gtest.h>

#include <string>

#include "quenlith/build/markup/code/task/TaskIdCounts.hpp"
#include "support/FailingAllocations.hpp"

namespace {

using quenlith::build::markup::code::task::TaskIdCounts;
using quenlith::test::liveAllocations;

/// Returns a block with two ids, each too long for a string to store inline.
std::u16string blockWithIds(int number) {
  const std::string text = "# <@task#a_long_id_" + std::to_string(100 + number) +
                           ">\n# <@task#another_long_id_" + std::to_string(100 + number) + ">";
  return {text.begin(), text.end()};
}

TEST(TaskIdCountsMemory, StoresOnlyOneBlock) {
  TaskIdCounts counts;
  counts.count(blockWithIds(0), 0, u"");
  const auto liveAfterOne = liveAllocations();
  for (int block = 1; block < 100; ++block) {
    counts.count(blockWithIds(block), 0, u"");
    ASSERT_EQ(liveAllocations(), liveAfterOne) << block;
  }
}

TEST(TaskIdCountsMemory, ClearReleasesTheBlock) {
  TaskIdCounts counts;
  const auto liveBefore = liveAllocations();
  counts.count(blockWithIds(0), 0, u"");
  ASSERT_GT(liveAllocations(), liveBefore);
  counts.clear();
  EXPECT_EQ(liveAllocations(), liveBefore);
}

}  // namespace
