#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "support/CountedWork.hpp"
#include "tessera/inputs/matchGlob.hpp"

namespace {

using quenlith::test::countedWork;
using tessera::inputs::matchGlob;

std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

// Matchers that return to every earlier star would need more steps than these tests have time for.
TEST(MatchGlobWork, IsLimitedByTheProductOfTheLengths) {
  constexpr std::string_view kStars[] = {"*a",    "**/a/",     "**/a*/", "**/*a*a/", "**/",
                                         "*/**/", "**/[!/]*/", "*?",     "**\\/a",   "***/"};
  constexpr std::string_view kFolders[] = {"a", "a/", "aa/", "ab/"};
  for (const std::string_view stars : kStars) {
    for (const std::string_view folder : kFolders) {
      const std::string pattern = repeated(stars, 200) + "b";
      const std::string path = repeated(folder, 400) + "c";
      SCOPED_TRACE(std::string(stars) + " " + std::string(folder));
      const std::uint64_t before = countedWork();
      EXPECT_FALSE(matchGlob(pattern, path));
      const std::uint64_t work = countedWork() - before;
      EXPECT_GT(work, 0U);
      EXPECT_LT(work, 40 * pattern.size() * path.size());
    }
  }
}

}  // namespace
