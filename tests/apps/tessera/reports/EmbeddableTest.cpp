#include "tessera/reports/embeddable.hpp"

#include <gtest/gtest.h>

namespace {

using tessera::reports::embeddable;

TEST(Embeddable, NothingOfATextCanBeginATag) {
  EXPECT_EQ(embeddable(R"("</script><!-- <b> <?php <SVG")"),
            R"("\u003c/script>\u003c!-- \u003cb> \u003c?php \u003cSVG")");
  EXPECT_EQ(embeddable(R"("<<b \\<b")"), R"("<\u003cb \\\u003cb")");
}

TEST(Embeddable, WhatIsInvisibleIsEscaped) {
  EXPECT_EQ(embeddable("\"\u202E\u2028\uFEFF\U000E0041\""), R"("\u202e\u2028\ufeff\udb40\udc41")");
}

TEST(Embeddable, OtherTextStays) {
  for (const char* text :
       {"", "\"\"", R"({"a":[1,"<@output#o> a < b <= c <1 \"é 中 😀 \n"]})", "\"<\""}) {
    EXPECT_EQ(embeddable(text), text);
  }
}

}  // namespace
