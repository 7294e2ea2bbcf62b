#include "tessera/inputs/matchGlob.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using tessera::inputs::matchGlob;

// Paths that the pattern matches, and paths that it does not; "|" is between two.
struct Case {
  std::string_view pattern;
  std::string_view matched;
  std::string_view others;
};

constexpr Case kCases[] = {
    {"ab", "ab", "a|abc|xab|aB"},
    {"a/b", "a/b", "ab|a/b/c|x/a/b"},
    {"?", "a|*|\xE9", "ab|/"},
    {"a?c", "abc", "ac|a/c|abbc"},
    {"*", "a|.a|ab", "a/b"},
    {"a*", "a|ab|abc", "ba|a/b"},
    {"*a", "a|aa|baa", "ab|b/a"},
    {"a*b*c", "abc|axbxc|abbcc", "abcd|a/b/c|acb"},
    {"*ab*ab", "abab|aabbab|abaab", "ab|aba"},
    {"*/b", "a/b", "b|a/a/b|a/bb"},
    {"a/*", "a/b", "a|a/b/c"},
    {"**", "a|a/b", ""},
    {"**/b", "b|a/b|a/a/b", "ab|a/bb|b/a"},
    {"**/a*/b", "a/b|x/ab/b|a/a/b", "b|a/x/b"},
    {"a/**", "a/b|a/b/c", "a|ab"},
    {"a/**/b", "a/b|a/x/b|a/x/y/b", "ab|a/xb|x/a/b"},
    {"**/a/**/b/*.c", "a/b/x.c|x/a/y/b/z.c|a/b/b/.c", "a/b/c|a/x.c"},
    {"a/**b", "a/b|a/xb", "a/x/b"},
    {"a**/b", "a/b|ax/b|ax/y/b", "b|xa/b"},
    {"*a**/b", "a/b|xay/b", "a/x/b"},
    {"**\\/b", "a/b|a/a/b", "b"},
    {"[ab]", "a|b", "c|ab"},
    {"[!ab]", "c|-", "a|b|/"},
    {"[^ab]", "c|^", "a|b"},
    {"[a^]", "a|^", "b"},
    {"[a-c]x", "ax|bx|cx", "dx|-x"},
    {"[a-]", "a|-", "b"},
    {"[-a]", "a|-", "b"},
    {"[a-c-e]", "b|-|e", "d"},
    {"[z-a]", "z", "a|m"},
    {"[]a]", "]|a", "b"},
    {"[!]a]", "b", "]|a"},
    {"[]-a]", "]|^|a", "b"},
    {"[\\]]", "]", "\\"},
    {"[\\a-\\c]", "b", "\\|d"},
    {"[[:digit:]a]", "0|9|a", "b|:"},
    {"[![:alpha:]]", "0|\xE9", "a|Z"},
    {"[[:upper:]-a]", "Z|-|a", "b"},
    {"[[:]", "[|:", "]"},
    {"[[:a]", "[|:|a", "]"},
    {"[[:none:]a]", "", "a|n|:"},
    {"[[::]]", "", ":|[|a"},
    {"x[/]y", "", "x/y|xy"},
    {"[a", "", "a|[a|["},
    {"[a-", "", "a|-|[a-"},
    {"[\\", "", "\\|[\\"},
    {"[", "", "[|a"},
    {"\\*", "*", "a|\\*"},
    {"\\a", "a", "\\a"},
    {"a\\/b", "a/b", "ab"},
    {"a\\", "", "a|a\\"},
    {"\\", "", "\\|a"},
    {"/", "", "a"},
};

template <class Check>
void forEachPath(std::string_view paths, const Check& check) {
  while (!paths.empty()) {
    const std::string_view path = paths.substr(0, paths.find('|'));
    check(path);
    paths.remove_prefix(std::min(path.size() + 1, paths.size()));
  }
}

TEST(MatchGlob, MatchesAsGitDoes) {
  for (const Case& pattern : kCases) {
    SCOPED_TRACE(pattern.pattern);
    forEachPath(pattern.matched,
                [&](auto path) { EXPECT_TRUE(matchGlob(pattern.pattern, path)) << path; });
    forEachPath(pattern.others,
                [&](auto path) { EXPECT_FALSE(matchGlob(pattern.pattern, path)) << path; });
  }
}

TEST(MatchGlob, ClassesHaveTheirAsciiCharacters) {
  const auto membersOf = [](const std::string& name) {
    std::string members;
    for (int character = 1; character < 0x100; ++character) {
      const char path = static_cast<char>(character);
      if (matchGlob("[[:" + name + ":]]", {&path, 1})) members += path;
    }
    return members;
  };
  const std::string digits = "0123456789";
  const std::string upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  const std::string lower = "abcdefghijklmnopqrstuvwxyz";
  EXPECT_EQ(membersOf("digit"), digits);
  EXPECT_EQ(membersOf("upper"), upper);
  EXPECT_EQ(membersOf("lower"), lower);
  EXPECT_EQ(membersOf("alpha"), upper + lower);
  EXPECT_EQ(membersOf("alnum"), digits + upper + lower);
  EXPECT_EQ(membersOf("xdigit"), digits + "ABCDEFabcdef");
  EXPECT_EQ(membersOf("blank"), "\t ");
  EXPECT_EQ(membersOf("space"), "\t\n\v\f\r ");
  // A set does not match a slash.
  EXPECT_EQ(membersOf("punct"), "!\"#$%&'()*+,-.:;<=>?@[\\]^_`{|}~");
  EXPECT_EQ(membersOf("print").size(), 94U);
  EXPECT_EQ(membersOf("graph").size(), 93U);
  EXPECT_EQ(membersOf("cntrl").size(), 32U);
}

}  // namespace
