#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/LDAPFilter.h>
#include <gtest/gtest.h>

#include <list>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using cppmicroservices::LDAPFilter;
using namespace std::string_literals;

bool matches(const std::string& filter, const Any& value) {
  AnyMap properties(AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS);
  properties["k"] = value;
  return LDAPFilter(filter).Match(properties);
}

struct TextCase {
  const char* filter;
  const char* text;
};

TEST(LdapFilter, TextHasNoInsignificantSpaces) {
  const std::vector<TextCase> cases = {
      {"(a=b)", "(a=b)"},
      {"  (a=b)  ", "(a=b)"},
      {"( & (a=b) (c=d) )", "(&(a=b)(c=d))"},
      {"(|(a=b)(!(c=d)))", "(|(a=b)(!(c=d)))"},
      {"(&(a=b))", "(&(a=b))"},
      {"\t(\n&\v(a\f=b)\r)", "(&(a=b))"},
      // Spaces in a value are significant, and so are those inside an attribute name.
      {"(a= b)", "(a= b)"},
      {"(a b=c)", "(a b=c)"},
      // Escapes and wildcards are unchanged.
      {"(a=\\*x)", "(a=\\*x)"},
      {"(a=\\(x\\\\)", "(a=\\(x\\\\)"},
      {"(a=b\\)c)", "(a=b\\)c)"},
      {"(a=*)", "(a=*)"},
      {"(a=x*y**z)", "(a=x*y**z)"},
      {"(a=)", "(a=)"},
      {"(a~=X y)", "(a~=X y)"},
      {"(a>=*)", "(a>=*)"},
      {"(a<=b)", "(a<=b)"},
      {"(a!=b)", "(a!=b)"},
  };
  for (const TextCase& test : cases) {
    EXPECT_EQ(LDAPFilter(test.filter).ToString(), test.text) << test.filter;
  }
}

TEST(LdapFilter, InvalidFiltersAreRefused) {
  const std::vector<std::string> filters = {
      "",       "a=b",    "(a",     "(=b)",    "(a<b)",  "(a>b)",         "(a~b)",
      "(a=(b)", "(a=b\\", "(a=b)x", "(&)",     "(!)",    "(!(a=b)(c=d))", "(!a=b)",
      "()",     "(",      "(a=b))", "(&(a=b)", "(|a=b)", "(&(a=b)x)",     "(a=b",
  };
  for (const std::string& filter : filters) {
    EXPECT_THROW(LDAPFilter{filter}, std::invalid_argument) << filter;
  }
}

struct MatchCase {
  const char* filter;
  Any value;
  bool matches;
};

void expectMatches(const std::vector<MatchCase>& cases) {
  for (const MatchCase& test : cases) {
    EXPECT_EQ(matches(test.filter, test.value), test.matches)
        << test.filter << " and " << test.value.ToStringNoExcept();
  }
}

TEST(LdapFilter, TextsAreCompared) {
  expectMatches({
      {"(k=a)", "a"s, true},        {"(K=a)", "a"s, true},      {"(k=A)", "a"s, false},
      {"(k =a)", "a"s, true},       {"(k= a)", " a"s, true},    {"(k= a)", "a"s, false},
      {"(k=)", ""s, true},          {"(k=)", "a"s, false},      {"(k=a\\*b)", "a*b"s, true},
      {"(k=a\\*b)", "axb"s, false}, {"(other=a)", "a"s, false}, {"(k>=b)", "c"s, true},
      {"(k>=b)", "b"s, true},       {"(k>=b)", "a"s, false},    {"(k<=b)", "a"s, true},
      {"(k<=b)", "b"s, true},       {"(k<=b)", "c"s, false},    {"(k~=a b)", "AB"s, true},
      {"(k~=AB)", "a\tb"s, true},   {"(k~=ab)", "abc"s, false}, {"(k~=a\x01)", "A"s, false},
  });
}

TEST(LdapFilter, WildcardsMatchAnyTextOnlyAfterEquals) {
  expectMatches({
      {"(k=*)", "a"s, true},
      {"(k=*)", ""s, true},
      {"(k=**)", "a"s, true},
      {"(k=ab*)", "ab"s, true},
      {"(k=ab*)", "abc"s, true},
      {"(k=ab*)", "aab"s, false},
      {"(k=*ab)", "aab"s, true},
      {"(k=*ab)", "aba"s, false},
      {"(k=a*b)", "ab"s, true},
      {"(k=a*b)", "a"s, false},
      {"(k=a*a)", "a"s, false},
      {"(k=a*bc*d)", "a-bbc-d"s, true},
      {"(k=a*bc*d)", "a-cb-d"s, false},
      {"(k=*a*a*)", "aa"s, true},
      {"(k=*a*a*)", "ab"s, false},
      {"(k~=a*d)", "AB CD"s, false},
      {"(k>=b*)", "b*"s, false},
      {"(k<=b*)", "a"s, false},
  });
}

TEST(LdapFilter, NumbersAreComparedAsNumbers) {
  expectMatches({
      {"(k=5)", 5, true},
      {"(k=6)", 5, false},
      {"(k= 5)", 5, true},
      {"(k=+5)", 5, true},
      {"(k=-5)", -5, true},
      {"(k=5.0)", 5, true},
      {"(k~=5)", 5, true},
      {"(k>=4)", 5, true},
      {"(k>=10)", 5, false},
      {"(k<=10)", 5, true},
      {"(k<=4)", 5, false},
      {"(k=x)", 5, false},
      {"(k>=x)", 5, false},
      {"(k=)", 5, false},
      {"(k=*)", 5, true},
      {"(k=**)", 5, false},
      {"(k=5)", short{5}, true},
      {"(k=5)", 5U, true},
      {"(k=5)", 5L, true},
      {"(k=5)", 5UL, true},
      {"(k=5)", 5LL, true},
      {"(k=5)", 5ULL, true},
      {"(k=9007199254740993)", 9007199254740992L, false},
      {"(k=9007199254740993)", 9007199254740993L, true},
      {"(k=1.50)", 1.5, true},
      {"(k=0.1)", 0.1, true},
      {"(k=0.1)", 0.1F, true},
      {"(k=1e0)", 1.0, true},
      {"(k>=1)", 1.5, true},
      {"(k<=1)", 1.5, false},
  });
}

TEST(LdapFilter, OtherValuesAreCompared) {
  expectMatches({
      // Booleans: the case of the word is ignored.
      {"(k=true)", true, true},
      {"(k=TRUE)", true, true},
      {"(k~=False)", false, true},
      {"(k=false)", true, false},
      {"(k=1)", true, false},
      {"(k=tru*)", true, false},
      {"(k>=true)", true, false},
      // A character is compared as a string of length 1.
      {"(k=c)", 'c', true},
      {"(k=c*)", 'c', true},
      {"(k~=C)", 'c', true},
      {"(k=99)", 'c', false},
      // One element of a list is enough.
      {"(k=a)", std::vector<std::string>{"b", "a"}, true},
      {"(k=c)", std::vector<std::string>{"b", "a"}, false},
      {"(k=a)", std::list<std::string>{"a"}, true},
      {"(k=1)", std::vector<Any>{Any("x"s), Any(1)}, true},
      {"(k=1)", std::vector<Any>{Any(std::vector<Any>{Any(1)})}, true},
      {"(k=*)", std::vector<std::string>{}, true},
      // Any other value matches only the presence test, and an empty one not even that.
      {"(k=1)", std::vector<int>{1}, false},
      {"(k=*)", std::vector<int>{1}, true},
      {"(k=*)", Any(), false},
  });
}

TEST(LdapFilter, ConditionsAreCombined) {
  const AnyMap properties{{"a", Any(1)}, {"b", Any(2)}};
  const std::vector<std::pair<const char*, bool>> cases = {
      {"(&(a=1)(b=2))", true}, {"(&(a=1)(b=3))", false},
      {"(|(a=3)(b=2))", true}, {"(|(a=3)(b=3))", false},
      {"(!(a=1))", false},     {"(!(a=2))", true},
      {"(!(c=*))", true},      {"(&(|(a=1)(c=1))(!(b=3)))", true}};
  for (const auto& [filter, expected] : cases) {
    EXPECT_EQ(LDAPFilter(filter).Match(properties), expected) << filter;
  }
}

TEST(LdapFilter, OnlyMatchCaseComparesKeysWithCase) {
  const AnyMap properties(AnyMap::UNORDERED_MAP, {{"Key", Any(1)}});
  EXPECT_TRUE(LDAPFilter("(key=1)").Match(properties));
  EXPECT_FALSE(LDAPFilter("(key=1)").MatchCase(properties));
  EXPECT_TRUE(LDAPFilter("(Key=1)").MatchCase(properties));
  const AnyMap ignoring{{"Key", Any(1)}};
  EXPECT_FALSE(LDAPFilter("(key=1)").MatchCase(ignoring));
}

TEST(LdapFilter, EmptyFilterMatchesNothing) {
  EXPECT_FALSE(LDAPFilter().Match(AnyMap()));
  EXPECT_FALSE(LDAPFilter().MatchCase(AnyMap()));
}

TEST(LdapFilter, KeysThatDifferInCaseOnlyAreRefused) {
  const AnyMap properties(AnyMap::UNORDERED_MAP, {{"a", Any(1)}, {"A", Any(2)}});
  EXPECT_THROW(LDAPFilter("(a=1)").Match(properties), std::runtime_error);
  EXPECT_THROW(LDAPFilter("(a=1)").MatchCase(properties), std::runtime_error);
}

TEST(LdapFilter, FiltersOfTheSameTextAreEqual) {
  LDAPFilter filter("( a=b)");
  EXPECT_TRUE(filter == LDAPFilter("(a=b)"));
  EXPECT_FALSE(filter == LDAPFilter("(a=c)"));
  const LDAPFilter copy(filter);
  filter = LDAPFilter("(a=c)");
  EXPECT_EQ(copy.ToString(), "(a=b)");
  std::ostringstream out;
  out << filter;
  EXPECT_EQ(out.str(), "(a=c)");
}

// Returns a filter that is negated `times` times.
std::string negated(int times) {
  std::string filter;
  for (int i = 0; i < times; ++i) filter += "(!";
  return filter + "(a=b)" + std::string(static_cast<std::size_t>(times), ')');
}

TEST(LdapFilter, DeepFiltersAreAccepted) {
  const std::string filter = negated(998);
  EXPECT_EQ(LDAPFilter(filter).ToString(), filter);
  EXPECT_TRUE(LDAPFilter(filter).Match(AnyMap{{"a", Any("b"s)}}));
  EXPECT_FALSE(LDAPFilter(negated(999)).Match(AnyMap{{"a", Any("b"s)}}));
}

std::string refusalOf(const std::string& filter) {
  try {
    return LDAPFilter(filter).ToString();
  } catch (const std::invalid_argument& exception) {
    return exception.what();
  }
}

TEST(LdapFilter, FiltersNestedTooDeeplyAreRefused) {
  for (const int times : {1000, 1000000}) {
    EXPECT_NE(refusalOf(negated(times)).find("filters nested too deeply at character 2001"),
              std::string::npos)
        << times;
  }
}

TEST(LdapFilter, ErrorShowsTheFilterOrItsBeginning) {
  EXPECT_EQ(refusalOf("(a=b"), "the filter \"(a=b\" cannot be parsed: no ) at character 5");
  const std::string longOne = "(a=" + std::string(1000000, 'x');
  EXPECT_EQ(refusalOf(longOne), "the filter \"" + longOne.substr(0, 200) +
                                    "...\" cannot be parsed: no ) at character 1000004");
}

}  // namespace
