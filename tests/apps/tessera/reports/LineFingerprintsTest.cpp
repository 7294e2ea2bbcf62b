#include "tessera/reports/LineFingerprints.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using tessera::reports::LineFingerprints;

std::string first(std::string_view id, std::u16string_view line) {
  return LineFingerprints().next(id, line);
}

TEST(LineFingerprints, AreTheSameInEveryRun) {
  // FNV-1a of "a", 0 and no text: calculated by hand from its definition.
  EXPECT_EQ(first("a", u""), "089be207b544f1e4:1");
  EXPECT_EQ(first("id", u"x = 1"), first("id", u"x = 1"));
}

TEST(LineFingerprints, DependOnTheIdAndOnTheTextOfTheLine) {
  EXPECT_NE(first("id", u"x = 1"), first("other", u"x = 1"));
  EXPECT_NE(first("id", u"x = 1"), first("id", u"x = 2"));
  EXPECT_NE(first("id", u"\u0141"), first("id", u"A"));
}

TEST(LineFingerprints, DoNotDependOnIndentation) {
  EXPECT_EQ(first("id", u"x = 1"), first("id", u"\t  x = 1 \t"));
  EXPECT_EQ(first("id", u""), first("id", u" \t"));
}

TEST(LineFingerprints, CountWhatIsEqual) {
  LineFingerprints fingerprints;
  const std::string hash = fingerprints.next("id", u"x").substr(0, 17);
  EXPECT_EQ(fingerprints.next("id", u" x"), hash + "2");
  EXPECT_TRUE(fingerprints.next("other", u"x").ends_with(":1"));
  EXPECT_EQ(fingerprints.next("id", u"x"), hash + "3");
}

}  // namespace
