#include "tessera/check/fixes/UnifiedDiff.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using tessera::check::fixes::UnifiedDiff;

/// Writes the difference of a text: each character is a line, of which a lower case one stays, an
/// upper case one is replaced by "new", and a digit is removed.
std::string diffOf(const std::string& lines) {
  UnifiedDiff diff("f");
  for (const char unit : lines) {
    const std::string line = std::string(1, unit) + "\n";
    if (unit >= 'a') {
      diff.keep(line);
    } else {
      diff.remove(line);
      if (unit >= 'A') diff.add("new\n");
    }
  }
  return diff.finish();
}

const std::string kHeader = "--- f\n+++ f\n";

TEST(UnifiedDiff, EqualTextsHaveNoDifference) {
  EXPECT_EQ(diffOf("abc"), "");
  EXPECT_EQ(diffOf(""), "");
}

TEST(UnifiedDiff, ThreeLinesOfContextAreAroundAChange) {
  EXPECT_EQ(diffOf("abcdEfghij"), kHeader +
                                      "@@ -2,7 +2,7 @@\n"
                                      " b\n c\n d\n-E\n+new\n f\n g\n h\n");
}

TEST(UnifiedDiff, ConsecutiveChangesRemoveFirst) {
  EXPECT_EQ(diffOf("aBCd"), kHeader + "@@ -1,4 +1,4 @@\n a\n-B\n-C\n+new\n+new\n d\n");
}

TEST(UnifiedDiff, ChangesWithinSixLinesShareAHunk) {
  EXPECT_EQ(diffOf("Aabcdef0"),
            kHeader + "@@ -1,8 +1,7 @@\n-A\n+new\n a\n b\n c\n d\n e\n f\n-0\n");
  EXPECT_EQ(diffOf("Aabcdefg0"), kHeader +
                                     "@@ -1,4 +1,4 @@\n-A\n+new\n a\n b\n c\n"
                                     "@@ -6,4 +6,3 @@\n e\n f\n g\n-0\n");
}

TEST(UnifiedDiff, LineNumbersCountRemovedLines) {
  EXPECT_EQ(diffOf("12abcdefghI"), kHeader +
                                       "@@ -1,5 +1,3 @@\n-1\n-2\n a\n b\n c\n"
                                       "@@ -8,4 +6,4 @@\n f\n g\n h\n-I\n+new\n");
}

TEST(UnifiedDiff, AFileOfWhichNothingIsLeft) {
  EXPECT_EQ(diffOf("1"), kHeader + "@@ -1,1 +0,0 @@\n-1\n");
}

TEST(UnifiedDiff, AMissingLineEndingIsShown) {
  UnifiedDiff diff("f");
  diff.remove("a");
  diff.add("b");
  EXPECT_EQ(diff.finish(),
            kHeader +
                "@@ -1,1 +1,1 @@\n"
                "-a\n\\ No newline at end of file\n+b\n\\ No newline at end of file\n");
}

TEST(UnifiedDiff, UnusualNamesAreQuoted) {
  for (const auto& [name, written] :
       {std::pair("a b", "--- a b\t\n"), std::pair("a\tb", "--- \"a\\011b\"\n"),
        std::pair("a\"\\", "--- \"a\\\"\\\\\"\n"), std::pair("\xC3\xA4", "--- \xC3\xA4\n")}) {
    UnifiedDiff diff(name);
    diff.remove("x\n");
    EXPECT_TRUE(diff.finish().starts_with(written)) << name;
  }
}

}  // namespace
