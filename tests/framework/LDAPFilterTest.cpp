#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/LDAPFilter.h>

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using cppmicroservices::LDAPFilter;

namespace {

AnyMap properties() {
  AnyMap map(AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS);
  map["text"] = std::string("Hello World");
  map["Number"] = 7;
  map["long"] = 12345678901L;
  map["ratio"] = 2.5;
  map["yes"] = true;
  map["no"] = false;
  map["list"] = std::vector<std::string>{"alpha", "beta"};
  map["anys"] = std::vector<Any>{Any(std::string("gamma")), Any(5)};
  map["star"] = std::string("a*b");
  map["brackets"] = std::string("(x)\\y");
  map["empty"] = std::string();
  map["nested"] = std::string("foo(bar)");
  map["literal"] = static_cast<const char*>("abc");
  map["umlaut"] = std::string("\xC3\xA4");
  return map;
}

struct Case {
  const char* filter;
  bool matches;
};

class Matching : public testing::TestWithParam<Case> {};

TEST_P(Matching, ReturnsWhetherThePropertiesMatch) {
  const LDAPFilter filter(GetParam().filter);
  EXPECT_EQ(filter.Match(properties()), GetParam().matches) << GetParam().filter;
}

constexpr Case kCases[] = {
    // Equality compares strings with case, keys without.
    {"(text=Hello World)", true},
    {"(TEXT=Hello World)", true},
    {"(text=hello world)", false},
    {"(text=Hello)", false},
    {"(missing=x)", false},
    {"(empty=)", true},
    {"(umlaut=\xC3\xA4)", true},
    // Parentheses in a value need no backslash when they are balanced.
    {"(nested=foo(bar))", true},
    {"(nested=foo\\(bar\\))", true},
    {"(nested=*(bar))", true},
    {"(nested=foo(b))", false},
    {"(&(nested=foo(bar))(number=7))", true},
    {"(nested=f((o)))", false},
    // A string literal is a string.
    {"(literal=abc)", true},
    {"(literal=a*)", true},
    {"(literal~=ABC)", true},
    {"(literal>=abb)", true},
    {"(literal=x)", false},
    // Numbers compare as numbers.
    {"(number=7)", true},
    {"(number=8)", false},
    {"(number>=7)", true},
    {"(number>=8)", false},
    {"(number<=7)", true},
    {"(number<=6)", false},
    {"(number=seven)", false},
    {"(long>=12345678901)", true},
    {"(long<=12345678900)", false},
    {"(ratio=2.5)", true},
    {"(ratio>=2.4)", true},
    {"(ratio<=2.4)", false},
    // Booleans.
    {"(yes=true)", true},
    {"(yes=false)", false},
    {"(no=false)", true},
    {"(no=true)", false},
    // Order of strings.
    {"(text>=Hello)", true},
    {"(text<=Hello)", false},
    // Presence.
    {"(text=*)", true},
    {"(missing=*)", false},
    {"(no=*)", true},
    // Substrings.
    {"(text=Hello*)", true},
    {"(text=*World)", true},
    {"(text=*lo Wo*)", true},
    {"(text=H*o*d)", true},
    {"(text=H*x*d)", false},
    {"(text=**)", true},
    {"(text=Hello World*)", true},
    {"(text=*Hello World)", true},
    // A list matches if one of its elements does.
    {"(list=alpha)", true},
    {"(list=beta)", true},
    {"(list=gamma)", false},
    {"(list=b*)", true},
    {"(anys=gamma)", true},
    {"(anys=5)", true},
    {"(list<=aardvark)", false},
    // Approximate match: case and spaces are ignored.
    {"(text~=helloworld)", true},
    {"(text~=HELLO WORLD)", true},
    {"(text~=hello)", false},
    // Escapes.
    {"(star=a\\*b)", true},
    {"(text=\\*)", false},
    {"(star=a*b)", true},
    {"(brackets=\\(x\\)\\\\y)", true},
    // And, or, not.
    {"(&(yes=true)(number=7))", true},
    {"(&(yes=true)(number=8))", false},
    {"(|(yes=false)(number=7))", true},
    {"(|(yes=false)(number=8))", false},
    {"(!(number=8))", true},
    {"(!(number=7))", false},
    {"(!(missing=x))", true},
    {"(&(|(number=1)(number=7))(!(text=x))(list=alpha))", true},
    // Spaces between the parts are ignored.
    {"(&(yes=true) (number=7))", true},
    {"( &( yes=true)(number=7) )", true},
    {" (number=7)", true},
    {"(number=7) ", true},
};

INSTANTIATE_TEST_SUITE_P(LDAPFilter, Matching, testing::ValuesIn(kCases));

class Refusing : public testing::TestWithParam<const char*> {};

TEST_P(Refusing, ThrowsForAFilterThatCannotBeParsed) {
  EXPECT_THROW(LDAPFilter{std::string(GetParam())}, std::invalid_argument) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(LDAPFilter, Refusing,
                         testing::Values("", "(", ")", "()", "(a)", "(a=b", "a=b", "(=b)", "(a=b))",
                                         "(a=b)(c=d)", "(&)", "(!)", "(|)", "(!(a=b)(c=d))",
                                         "(a>b)", "(a<b)", "(a~b)", "(&(a=b)", "(a=(b)", "x(a=b)"));

}  // namespace

TEST(LDAPFilter, EmptyFilterIsFalseAndHasNoText) {
  const LDAPFilter empty;
  EXPECT_FALSE(empty);
  EXPECT_EQ(empty.ToString(), "");
  EXPECT_TRUE(LDAPFilter("(a=b)"));
}

TEST(LDAPFilter, ToStringReturnsTheFilterText) {
  EXPECT_EQ(LDAPFilter("(a=b)").ToString(), "(a=b)");
  EXPECT_EQ(LDAPFilter("(&(a=b)(c>=1))").ToString(), "(&(a=b)(c>=1))");
  EXPECT_EQ(LDAPFilter("(!(priority=default))").ToString(), "(!(priority=default))");
  EXPECT_EQ(LDAPFilter("(a=b*c)").ToString(), "(a=b*c)");
  EXPECT_EQ(LDAPFilter(" ( & ( a=b ) (c~=d) ) ").ToString(), "(&(a=b )(c~=d))");
}

TEST(LDAPFilter, FiltersWithEqualTextsAreEqual) {
  EXPECT_EQ(LDAPFilter("(a=b)"), LDAPFilter("(a=b)"));
  EXPECT_FALSE(LDAPFilter("(a=b)") == LDAPFilter("(a=c)"));
  EXPECT_EQ(LDAPFilter(), LDAPFilter());
}

TEST(LDAPFilter, CopiesAreEqual) {
  LDAPFilter copy;
  const LDAPFilter filter("(a=b)");
  copy = filter;
  EXPECT_EQ(copy, filter);
  EXPECT_EQ(LDAPFilter(copy).ToString(), "(a=b)");
}

TEST(LDAPFilter, MatchCaseComparesKeysWithCase) {
  AnyMap map(AnyMap::ORDERED_MAP);
  map["Key"] = 1;
  EXPECT_FALSE(LDAPFilter("(key=1)").MatchCase(map));
  EXPECT_TRUE(LDAPFilter("(Key=1)").MatchCase(map));
}
