#include "quenlith/build/markup/code/line/normaliseLine.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using quenlith::build::markup::code::line::normaliseLine;

TEST(EscapedLeader, LosesItsBackslash) {
  struct Case {
    const char16_t* line;
    const char16_t* normalised;
  };
  const std::vector<Case> cases{
      {u"%%\\", u"%%"},
      {u"a %%\\ b", u"a %% b"},
      {u"%%\\%%\\", u"%%%%"},
      // The replacement is not searched again.
      {u"%%\\\\", u"%%\\"},
      {u"%%%\\", u"%%%"},
      {u"%%%%\\\\\\", u"%%%%\\\\"},
      {u"%%\\ <@task>", u"%% <@task>"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(normaliseLine(each.line), each.normalised);
  }
}

TEST(EscapedLeader, IsThreeConsecutiveUnits) {
  for (const char16_t* line :
       {u"", u"%", u"%%", u"\\", u"%\\", u"\\%%", u"% %\\", u"%%/", u"%%%"}) {
    EXPECT_EQ(normaliseLine(line), line);
  }
}

TEST(EscapedLeader, IsFoundAtEveryPositionOfALineOfAnyLength) {
  for (std::size_t length = 3; length < 60; ++length) {
    for (std::size_t place = 0; place + 3 <= length; ++place) {
      std::u16string line(length, u'x');
      line.replace(place, 3, u"%%\\");
      std::u16string expected = line;
      expected.erase(place + 2, 1);
      ASSERT_EQ(normaliseLine(line), expected) << place << " of " << length;
      line[place + 1] = u'x';
      ASSERT_EQ(normaliseLine(line), line) << place << " of " << length;
    }
  }
}

}  // namespace
