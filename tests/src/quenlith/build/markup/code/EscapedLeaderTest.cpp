#include "quenlith/build/markup/code/EscapedLeader.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using quenlith::build::markup::code::hasEscapedLeader;
using quenlith::build::markup::code::withoutEscapes;

TEST(EscapedLeader, LosesItsBackslash) {
  struct Case {
    const char16_t* line;
    const char16_t* normalised;
  };
  const std::vector<Case> cases{
      {u"%%\\", u"%%"},
      {u"a %%\\ b", u"a %% b"},
      {u"%%\\%%\\", u"%%%%"},
      // What comes of it is not looked at again.
      {u"%%\\\\", u"%%\\"},
      {u"%%%\\", u"%%%"},
      {u"%%%%\\\\\\", u"%%%%\\\\"},
      {u"%%\\ <@task>", u"%% <@task>"},
  };
  for (const Case& each : cases) {
    EXPECT_TRUE(hasEscapedLeader(each.line));
    EXPECT_EQ(withoutEscapes(each.line), each.normalised);
  }
}

TEST(EscapedLeader, IsThreeUnitsTogether) {
  for (const char16_t* line :
       {u"", u"%", u"%%", u"\\", u"%\\", u"\\%%", u"% %\\", u"%%/", u"%%%"}) {
    EXPECT_FALSE(hasEscapedLeader(line));
    EXPECT_EQ(withoutEscapes(line), line);
  }
}

TEST(EscapedLeader, IsFoundAtEveryPlaceOfALineOfEveryLength) {
  for (std::size_t length = 3; length < 60; ++length) {
    for (std::size_t place = 0; place + 3 <= length; ++place) {
      std::u16string line(length, u'x');
      line.replace(place, 3, u"%%\\");
      ASSERT_TRUE(hasEscapedLeader(line)) << place << " of " << length;
      line[place + 1] = u'x';
      ASSERT_FALSE(hasEscapedLeader(line)) << place << " of " << length;
      // A unit whose bytes look like a backslash beside others is none.
      line.replace(place, 3, u"%%\x5C5C");
      ASSERT_FALSE(hasEscapedLeader(line)) << place << " of " << length;
    }
  }
}

}  // namespace
